#pragma once

#include "records/RecordKind.h"

/// The rows of a list that its kind describes.
class PlainListModel : public RecordListModel
{
    Q_OBJECT
public:
    enum Role { DetailRole = Qt::UserRole, MarkRole, PortraitRole };

    using Source = std::function<std::vector<ListedRecord>()>;
    PlainListModel(const RecordKind &kind, Source source, QObject *parent = nullptr);

    void fetch() override;
    void update(const std::set<RowId> &changed, const std::set<RowId> &held) override;
    bool isRegroupedBy(const StoreChanges &changes) const override
    {
        return isRegrouped && isRegrouped(changes);
    }
    ObjectPtr recordAt(int row) const override;
    RowId identifierAt(int row) const override;
    int rowOf(const ObjectPtr &record) const override;
    RowKind kindOf(int row) const override;
    QString countInWords(int items) const override { return inWords(items); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    Source source;
    std::function<RecordLook(const ManagedObject &record)> look;
    std::function<QString(int count)> inWords;
    std::function<bool(const StoreChanges &changes)> isRegrouped;
    RecordRows rows;
};

/// The screen of a kind of record that its description says all of.
class PlainRecordScreen : public RecordListScreen
{
    Q_OBJECT
public:
    explicit PlainRecordScreen(const RecordKind &kind, QWidget *parent = nullptr);
    ~PlainRecordScreen() override;

protected:
    void showMenu(const QPoint &globalPosition) override { Q_EMIT menuWanted(globalPosition); }
    DetailViewController *makePane(const ObjectPtr &record) override;
    void remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                const Step &step) override;

private:
    RecordKind kind;
};

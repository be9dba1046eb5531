#pragma once

#include "foundation/Error.h"

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for the passphrase of the shared folder: for a new one twice, so that a slip of the hand locks nobody
/// out. It stays open, and says why, until the passphrase is accepted.
class PassphraseDialog : public QDialog
{
    Q_OBJECT
public:
    enum class Purpose { Seal, Change, Enter };
    /// Does the work with the passphrase; the error is shown.
    using Use = std::function<OptionalError(const QString &)>;

    PassphraseDialog(Purpose asked, Use used, QWidget *parent = nullptr);

private:
    QLineEdit *addField(const QString &name, const QString &label);
    /// Why the new passphrase cannot be used; empty if it can.
    QString objection() const;
    void use();
    void say(const QString &words);

    Purpose purpose;
    Use useOf;
    QLineEdit *first;
    QLineEdit *second = nullptr;
    QLabel *wrong;
    QPushButton *done;
};

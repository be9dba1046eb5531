#pragma once

#include <QTextBrowser>
#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

/// Shows pages of the guide. Links to the web open in the browser of the desktop.
class HelpBrowser : public QTextBrowser
{
    Q_OBJECT
public:
    explicit HelpBrowser(QWidget *parent = nullptr);

    /// The name of the page that is shown.
    QString page() const { return source().fileName(); }
    void showPage(const QString &name) { setSource(QUrl(name)); }

    QVariant loadResource(int type, const QUrl &name) override;

protected:
    void doSetSource(const QUrl &name, QTextDocument::ResourceType type) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// Pictures are as wide as their page; at another width they are read anew.
    void fitPictures();

    QTimer fitting;
    int fittedWidth = 0;
};

/// The window of the user guide and of the page of the shortcuts: back, contents, a search over all pages,
/// larger and smaller text. There is one, which the program shows whatever else is open.
class HelpWindow : public QWidget
{
    Q_OBJECT
public:
    /// Shows a page in the window, made if it is not there.
    static void showPage(const QString &name);
    /// The one that is open, or null.
    static HelpWindow *shared();

    HelpBrowser *browser() const { return text; }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    HelpWindow();
    void makeBar();
    QToolButton *addButton(const char *name, const QString &icon, const QString &title, const QString &keys,
                           const std::function<void()> &press);
    /// Goes to the next place with the words of the search, on this page or another one.
    void findNext();
    void pageChanged(const QUrl &page);
    void scale(int steps);

    HelpBrowser *text;
    QLineEdit *field;
    QLabel *note;
    class QHBoxLayout *bar;
    QToolButton *back = nullptr;
    int scaled = 0;
};

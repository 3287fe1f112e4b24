#pragma once

#include <QAction>
#include <QDialog>
#include <QList>
#include <QPointer>

#include <functional>
#include <optional>

class QBoxLayout;
class QPushButton;

// A question on its window: hangs from the top of it, takes the keyboard and the pointer until it is answered. The
// focus stays within it, goes through it as it is seen, and returns to where it was; the window's shortcuts do nothing
// meanwhile. Enter takes the default button, Esc the last one.
class Sheet : public QDialog
{
    Q_OBJECT
public:
    // On the window, how many sheets hang from it: its commands rest while there is one.
    static constexpr const char *isShownProperty = "zqSheetIsShown";

    // On a window beside the main one: what is asked while it is active hangs from it, and it stays open meanwhile.
    static constexpr const char *hasOwnProperty = "zqHasSheets";

    Sheet(QWidget *window, const QString &title);
    ~Sheet() override;
    int run(); // waits; the code given to `done`
    // Shows it, returns, and calls `then` with the code when it was answered, before it deletes itself; with nothing
    // when it goes with its window.
    void open(std::function<void(std::optional<int>)> then);
    using QDialog::open;
    // Every sheet of that window shown by `open` is answered as with Esc.
    static void dismissOpened(QWidget *window);

protected:
    QBoxLayout *content() const { return m_content; } // between title and buttons
    QPushButton *addButton(const QString &text, int code, bool isDefault);
    QBoxLayout *footer() const { return m_footer; } // widgets before the buttons
    bool eventFilter(QObject *object, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void reject() override;
    void setWidth(int width);

private:
    void place();
    void orderFocus();
    void begin();
    void end();
    bool isOnTop() const;
    bool isInside(const QWidget *widget) const { return widget == this || isAncestorOf(widget); }
    void takeFocus();
    // Whether what comes for a widget of the window outside of the sheet is kept from it.
    bool keepsFrom(QWidget *widget, QEvent *event);

    QWidget *m_window;
    QPointer<QWidget> m_cover;
    QBoxLayout *m_content;
    QBoxLayout *m_footer;
    QPointer<QWidget> m_focusBefore;
    QList<QPointer<QAction>> m_paused;
    std::function<void(std::optional<int>)> m_then; // of a sheet that is shown without waiting
    QPushButton *m_default = nullptr;               // a dialog that is no window of its own forgets which one it is
    int m_rejectCode = 0;
    int m_width = 460;
};

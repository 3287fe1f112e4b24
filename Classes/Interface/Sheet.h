#pragma once

#include <QDialog>

class QBoxLayout;
class QPushButton;

// A question on its window: hangs from the top of it, takes the keyboard and the pointer until it is answered. Enter
// takes the default button, Esc the last one.
class Sheet : public QDialog
{
    Q_OBJECT
public:
    // On the window while a sheet hangs from it: its commands rest.
    static constexpr const char *isShownProperty = "zqSheetIsShown";

    Sheet(QWidget *window, const QString &title);
    int run(); // waits; the code given to `done`

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

    QWidget *m_window;
    QWidget *m_cover;
    QBoxLayout *m_content;
    QBoxLayout *m_footer;
    QPushButton *m_default = nullptr; // a dialog that is no window of its own forgets which one it is
    int m_rejectCode = 0;
    int m_width = 460;
};

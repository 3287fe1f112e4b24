#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHash>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>

class QBoxLayout;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;
class TurningIcon;
class UserInteraction;

// The part of the cloud preferences about one account: a form, what it waits for, and what is wrong with it. Fields
// of preferences are written when they are left or Return is pressed. Main thread.
class CloudAccountPage : public QWidget
{
    Q_OBJECT
public:
    CloudAccountPage(const QString &service, const QString &title, QWidget *parent = nullptr);

    QString service() const { return objectName(); } // its identifier, or what those of several begin with
    QString title() const { return accessibleName(); }
    virtual QStringList preferences() const { return m_keys; } // what it shows
    virtual void refresh();                                    // everything, as it is now
    // The identifier of the service that could be shared to; of several the one that is selected.
    virtual QString serviceToUse() const { return service(); }
    void showUse(const QString &serviceInUse); // offers to share to this one while another one is in use

    // Return in the field presses the button, but once the key has gone all its way: the window would have it press the
    // button that the focus moves to, as well.
    static void pressOnReturn(const QLineEdit *field, QPushButton *button);

Q_SIGNALS:
    void refused(const ZQError &error); // what was entered could not be written
    void changed();                     // an account came or went
    void useRequested(const QString &service);

protected:
    enum class FieldKind { Plain, Secret };
    // Fields lie in a form, whose place is where the first of them is added; "&" in the names marks keys.
    QLineEdit *addField(const QString &text, const QString &example, FieldKind kind = FieldKind::Plain);
    QLineEdit *addPreference(const QString &text, const QString &key, const QString &example);
    void storeFields(); // of preferences, as they are now
    QLabel *addNote(const QString &text);
    void addLink(const QString &text, const QUrl &url); // opens the web browser
    void addLink(const QString &text, const QString &toolTip, std::function<void()> run);
    QBoxLayout *addRow(); // for buttons
    QPushButton *addButton(QBoxLayout *row, const QString &text, std::function<void()> run);
    // What is under way, or done; behind the buttons. Once.
    void addState(QBoxLayout *row);
    void showState(const QString &text, bool isUnderWay = false);
    void showProblem(const QString &text); // empty: there is none
    void showEnd(const ZQError &error);    // of what changed an account, or failed to
    QVBoxLayout *column() const { return m_column; }
    // "Waiting for the keyring…" while that is asked, else `otherwise`.
    static QString orKeyring(const QString &otherwise);
    static bool isSureToDisconnect(UserInteraction &user, const QString &account);
    void moveFocusTo(QWidget *widget); // where it would be lost, since what had it goes or rests
    static void setShown(std::initializer_list<QWidget *> widgets, bool isShown);
    void setFieldsShown(std::initializer_list<QLineEdit *> fields, bool isShown); // with their names

private:
    void store(QLineEdit *field, const QString &key);

    QVBoxLayout *m_column;
    QGridLayout *m_form = nullptr;
    QHash<QLineEdit *, QLabel *> m_names;
    QPushButton *m_use;
    QLabel *m_problem;
    QLabel *m_state = nullptr;
    TurningIcon *m_turning = nullptr;
    std::shared_ptr<void> m_token;
    QStringList m_keys;
    QList<QLineEdit *> m_fields; // of those
};

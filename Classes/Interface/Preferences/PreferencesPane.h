#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHash>
#include <QWidget>

#include <chrono>
#include <functional>

class QCheckBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QSpinBox;
class QVBoxLayout;

// The settings of one subject in a column. Each control shows one preference, writes it as soon as it is changed, and
// follows it when it is changed elsewhere. Where it cannot be written a button stays as it is, and a field goes back to
// what holds. Main thread.
class PreferencesPane : public QWidget
{
    Q_OBJECT
public:
    explicit PreferencesPane(const QString &title, QWidget *parent = nullptr);

    struct Choice
    {
        QVariant value;
        QString text;
    };
    struct Number
    {
        int smallest = 1;
        int largest = 1;
        qint64 unit = 1; // what 1 stands for in the preference
        QString suffix = {};
    };

    // With a `buddy` the text has an access key, which goes there.
    void addHeading(const QString &text, QWidget *buddy = nullptr);
    void addNote(const QString &text);
    // On while the preference is `onValue`.
    QCheckBox *addSwitch(const QString &key, const QString &text, const QString &meaning = {}, bool onValue = true);
    void addChoices(const QString &key, const QString &name, const QList<Choice> &choices);
    // A preference out of the range counts, and is shown, as its default.
    QSpinBox *addNumber(const QString &key, const QString &text, const Number &number);

    void showPreference(const QString &key); // as it is now

    static constexpr std::chrono::milliseconds refusalTime{8000}; // for the text of `refused`

Q_SIGNALS:
    void refused(const ZQError &error); // what was chosen could not be written

protected:
    QVBoxLayout *column() const { return m_column; }
    QPushButton *addButtonRow(const QString &text, std::function<void()> run);
    void setShown(const QString &key, std::function<void()> show); // shows it now and whenever it changes
    bool store(const QVariant &value, const QString &key);         // tells where it could not be written

private:
    void choose(const QVariant &value, const QString &key); // what the control shows already
    QLabel *addLabel(const QString &text, const QString &style);

    QVBoxLayout *m_column;
    QGridLayout *m_numbers = nullptr; // to which the next number is added, too
    QHash<QString, std::function<void()>> m_shown;
    bool m_isShowing = false; // what controls tell meanwhile nobody chose
};

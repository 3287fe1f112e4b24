#include "Classes/Interface/Preferences/PreferencesPane.h"

#include "Classes/Application/PreferencesController.h"
#include "Kit/Files/ZQUserDefaults.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QSpinBox>

#include <utility>

namespace {

constexpr int meaningIndent = 28; // below the text of its box

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

// Shows what was chosen once that is written, so that what cannot be is never seen.
template <class Button>
class WritingButton : public Button
{
public:
    WritingButton(const QString &text, QWidget *parent, std::function<bool(bool isOn)> write)
        : Button(text, parent), m_write(std::move(write))
    {
    }

protected:
    void nextCheckState() override
    {
        if (m_write(!this->isChecked())) {
            Button::nextCheckState();
        }
    }

private:
    std::function<bool(bool isOn)> m_write;
};

} // namespace

PreferencesPane::PreferencesPane(const QString &title, QWidget *parent) : QWidget(parent), m_column(new QVBoxLayout)
{
    setObjectName(QStringLiteral("PreferencesPane"));
    setAccessibleName(title);
    auto *all = new QVBoxLayout(this);
    all->setContentsMargins(26, 22, 26, 22);
    all->addLayout(m_column);
    all->addStretch(1);
    m_column->setSpacing(8);
    addLabel(title, QStringLiteral("Title"));
}

QLabel *PreferencesPane::addLabel(const QString &text, const QString &style)
{
    m_numbers = nullptr;
    auto *label = new QLabel(text, this);
    label->setObjectName(style);
    label->setWordWrap(true);
    m_column->addWidget(label);
    return label;
}

void PreferencesPane::addHeading(const QString &text, QWidget *buddy)
{
    m_column->addSpacing(12);
    addLabel(text, QStringLiteral("Caption"))->setBuddy(buddy);
}

void PreferencesPane::addNote(const QString &text)
{
    addLabel(text, QStringLiteral("SmallMuted"));
}

QPushButton *PreferencesPane::addButtonRow(const QString &text, std::function<void()> run)
{
    m_numbers = nullptr;
    auto *row = new QHBoxLayout;
    auto *button = new QPushButton(text, this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, std::move(run));
    row->addWidget(button);
    row->addStretch(1);
    m_column->addLayout(row);
    return button;
}

void PreferencesPane::setShown(const QString &key, std::function<void()> show)
{
    show();
    m_shown.insert(key, std::move(show));
}

void PreferencesPane::showPreference(const QString &key)
{
    if (const auto show = m_shown.value(key)) {
        const QScopedValueRollback showing(m_isShowing, true);
        show();
    }
}

void PreferencesPane::choose(const QVariant &value, const QString &key)
{
    if (!m_isShowing && !store(value, key)) {
        // Later: others are still to be told what the control shows now.
        const auto goBack = [this, key] { showPreference(key); };
        QMetaObject::invokeMethod(this, goBack, Qt::QueuedConnection);
    }
}

bool PreferencesPane::store(const QVariant &value, const QString &key)
{
    ZQError error;
    const bool isStored = defaults().storeObjectForKey(value, key, &error);
    if (!isStored) {
        Q_EMIT refused(error);
    }
    return isStored;
}

QCheckBox *PreferencesPane::addSwitch(const QString &key, const QString &text, const QString &meaning, bool onValue)
{
    m_numbers = nullptr;
    auto *box = new WritingButton<QCheckBox>(text, this,
                                             [this, key, onValue](bool isOn) { return store(isOn == onValue, key); });
    m_column->addWidget(box);
    if (!meaning.isEmpty()) {
        box->setAccessibleDescription(meaning);
        QLabel *label = addLabel(meaning, QStringLiteral("SmallMuted"));
        label->setContentsMargins(meaningIndent, 0, 0, 4);
    }
    setShown(key, [box, key, onValue] { box->setChecked(defaults().boolForKey(key) == onValue); });
    connect(box, &QCheckBox::toggled, this, [this, key, onValue](bool isOn) { choose(isOn == onValue, key); });
    return box;
}

void PreferencesPane::addChoices(const QString &key, const QString &name, const QList<Choice> &choices)
{
    addHeading(name);
    auto *group = new QButtonGroup(this);
    for (const Choice &choice : choices) {
        auto *button = new WritingButton<QRadioButton>(
            choice.text, this, [this, key, value = choice.value](bool isOn) { return !isOn || store(value, key); });
        button->setAccessibleDescription(name);
        group->addButton(button, int(group->buttons().size()));
        m_column->addWidget(button);
    }
    setShown(key, [group, key, choices] {
        const QVariant value = defaults().objectForKey(key);
        for (qsizetype i = 0; i < choices.size(); ++i) {
            if (choices[i].value == value) {
                group->button(int(i))->setChecked(true);
            }
        }
    });
    connect(group, &QButtonGroup::idToggled, this, [this, key, choices](int id, bool isOn) {
        if (isOn) {
            choose(choices[id].value, key);
        }
    });
}

QSpinBox *PreferencesPane::addNumber(const QString &key, const QString &text, const Number &number)
{
    if (!m_numbers) {
        m_numbers = new QGridLayout;
        m_numbers->setHorizontalSpacing(12);
        m_numbers->setVerticalSpacing(6);
        m_numbers->setColumnStretch(2, 1);
        m_column->addLayout(m_numbers);
    }
    auto *field = new QSpinBox(this);
    field->setButtonSymbols(QAbstractSpinBox::NoButtons);
    field->setRange(number.smallest, number.largest);
    field->setGroupSeparatorShown(true);
    field->setKeyboardTracking(false); // half a number is none
    field->setSuffix(number.suffix);
    field->setFixedWidth(140);
    auto *label = new QLabel(text, this);
    label->setBuddy(field);
    field->setAccessibleName(QString(text).remove(u'&'));
    const int row = m_numbers->rowCount();
    m_numbers->addWidget(label, row, 0);
    m_numbers->addWidget(field, row, 1);
    setShown(key, [field, key, number] {
        qint64 value = defaults().integerForKey(key);
        if (value < number.smallest) {
            value = PreferencesController::defaultPreferences().value(key).toLongLong();
        }
        const QSignalBlocker blocker(field); // what is rounded here stays as it was set
        field->setValue(int(std::clamp<qint64>(value / number.unit, number.smallest, number.largest)));
    });
    connect(field, &QSpinBox::valueChanged, this,
            [this, key, unit = number.unit](int value) { choose(value * unit, key); });
    return field;
}

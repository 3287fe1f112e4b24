// In another language: each text that a person sees or hears comes out of the catalogue, whole.

#include "Classes/Interface/Preferences/PreferencesWindow.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QSet>
#include <QTranslator>

namespace {

// A language in which every text stands in brackets.
class Brackets : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *, int) const override
    {
        return qstrcmp(context, "Zelto") == 0 ? u'⟦' + QString::fromUtf8(source) + u'⟧' : QString();
    }
    bool isEmpty() const override { return false; }
};

class LanguagesTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        QCoreApplication::installTranslator(&m_brackets);
        MainWindowFixture::SetUp();
    }
    void TearDown() override
    {
        MainWindowFixture::TearDown();
        QCoreApplication::removeTranslator(&m_brackets);
    }

    // What shows through `text` that is in no brackets, has letters, and is no name that a person or a file gave.
    QString left(QString text) const
    {
        static const QRegularExpression innermost(QStringLiteral("⟦[^⟦⟧]*⟧"));
        for (qsizetype before = -1; before != text.size();) {
            before = text.size();
            text.remove(innermost);
        }
        for (const QString &name : names) {
            text.remove(name);
        }
        static const QRegularExpression letters(QStringLiteral("\\p{L}{2,}"));
        return text.contains(letters) ? text : QString();
    }
    void look(const QObject &object, const QString &text)
    {
        if (const QString rest = left(text); !rest.isEmpty()) {
            found.insert(QStringLiteral("%1 %2: “%3”")
                             .arg(QString::fromLatin1(object.metaObject()->className()), object.objectName(), text));
        }
    }
    void lookThrough(QWidget &window)
    {
        QList<QWidget *> all = window.findChildren<QWidget *>();
        all.append(&window);
        for (const QWidget *widget : std::as_const(all)) {
            look(*widget, widget->toolTip());
            look(*widget, widget->accessibleName());
            look(*widget, widget->accessibleDescription());
            look(*widget, widget->windowTitle());
            for (const QAction *action : widget->actions()) {
                look(*action, action->text().section(u'\t', 0, 0)); // behind it stand keys
                look(*action, action->toolTip());
            }
            if (const auto *button = qobject_cast<const QAbstractButton *>(widget)) {
                look(*button, button->text());
            } else if (const auto *label = qobject_cast<const QLabel *>(widget)) {
                look(*label, label->text());
            } else if (const auto *line = qobject_cast<const QLineEdit *>(widget)) {
                look(*line, line->placeholderText());
            } else if (const auto *edit = qobject_cast<const QPlainTextEdit *>(widget)) {
                look(*edit, edit->placeholderText());
            } else if (const auto *box = qobject_cast<const QGroupBox *>(widget)) {
                look(*box, box->title());
            } else if (const auto *choice = qobject_cast<const QComboBox *>(widget)) {
                for (int i = 0; i < choice->count(); ++i) {
                    look(*choice, choice->itemText(i));
                }
            } else if (const auto *list = qobject_cast<const QListWidget *>(widget)) {
                for (int i = 0; i < list->count(); ++i) {
                    look(*list, list->item(i)->text());
                }
            }
        }
    }

    QStringList names; // of the library's things, and of what is called alike in all languages
    QSet<QString> found;

private:
    Brackets m_brackets;
};

} // namespace

TEST_F(LanguagesTest, EveryTextOfTheWindowComesFromTheCatalogue)
{
    names = {QStringLiteral("Zelto"), QStringLiteral("Folder"), QStringLiteral("Inner"), QStringLiteral("mine"),
             QStringLiteral("pages"), QStringLiteral("moving"), QStringLiteral("clear"), QStringLiteral("red")};
    show(item);
    lookThrough(window());
    EXPECT_EQ(QStringList(found.values()).join(u'\n'), QString());
}

TEST_F(LanguagesTest, EveryTextOfThePreferencesComesFromTheCatalogue)
{
    names = {QStringLiteral("Zelto"), QStringLiteral("Test"), world.path()};
    press(Qt::Key_Comma, Qt::ControlModifier);
    auto *const preferences = window().findChild<PreferencesWindow *>();
    ASSERT_TRUE(preferences);
    lookThrough(*preferences); // each pane, shown or not
    EXPECT_EQ(QStringList(found.values()).join(u'\n'), QString());
    preferences->close();
}

TEST_F(LanguagesTest, EveryTextOfTheExportPanelComesFromTheCatalogue)
{
    names = {QStringLiteral("Zelto"), QStringLiteral("Folder"), QStringLiteral("Inner"), QStringLiteral("mine"),
             QStringLiteral("pages"), QStringLiteral("moving"), QStringLiteral("clear"), QStringLiteral("red"),
             QStringLiteral("JPEG"),  QStringLiteral("PNG"),    QStringLiteral("TIFF"),  QStringLiteral("PSD"),
             QStringLiteral("ZIP"),   QStringLiteral("WEBP"),   QStringLiteral("WebP"),  QStringLiteral("AVIF")};
    select({QStringLiteral("red")});
    run(CommandID::ExportPanel);
    settle();
    lookThrough(window());
    EXPECT_EQ(QStringList(found.values()).join(u'\n'), QString());
}

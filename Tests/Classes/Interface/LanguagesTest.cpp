// In another language: each text that a person sees or hears comes out of the catalogue, whole.

#include "Classes/Interface/Browser/BrowserHead.h"
#include "Classes/Interface/Preferences/PreferencesWindow.h"
#include "Classes/Interface/Sheets/CrashReportSheet.h"
#include "Classes/Interface/Sheets/StatisticsSheet.h"
#include "Classes/Interface/Sidebar/SidebarTreeModel.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQListHead.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QSpinBox>
#include <QToolButton>
#include <QTranslator>

#include <algorithm>
#include <functional>

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

// What is called alike in all languages: addresses, places and tokens, keys, sizes, names of products and of formats;
// and what the desktop calls types, in its own words.
QString withoutData(QString text)
{
    static const QRegularExpression data(
        QStringLiteral(R"(https?://\S*|\{\w+\}|#\S+(?: none)?|\b(?:Ctrl|Alt|Shift|Super)\+\S+)"
                       R"(|\d[\d.,]*\s?(?:[kKMGT]i?B|bytes|px|mm)\b)"
                       R"(|\b(?:Zelto|CloudApp|Dropbox|Imgur|WebDAV|AM|PM|UTC|GMT)\b)"
                       R"(|\b(?:PDF document|PNG image)\b)"
                       R"(|\b(?:jpe?g|jp2|png|gif|tiff?|bmp|psd|pdf|webp|avif|hei[cf]|jxl|svg|ico|icns|zip)\b)"),
        QRegularExpression::CaseInsensitiveOption);
    text.remove(data);
    const QLocale locale;
    for (const auto form : {QLocale::LongFormat, QLocale::ShortFormat}) {
        for (int i = 1; i <= 12; ++i) {
            text.remove(locale.monthName(i, form));
            text.remove(locale.dayName(std::min(i, 7), form));
        }
    }
    return text;
}

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
        EXPECT_EQ(QStringList(m_found.values()).join(u'\n').toStdString(), "") << "in no catalogue, or glued on";
        MainWindowFixture::TearDown();
        QCoreApplication::removeTranslator(&m_brackets);
    }

    // Notes what of `text` is in no brackets, has letters, and is no name that a person or a file gave.
    void look(const QObject &object, const QString &text)
    {
        static const QRegularExpression innermost(QStringLiteral("⟦[^⟦⟧]*(?:⟧|…$)")); // some are cut
        static const QRegularExpression names(
            QStringLiteral(R"(\b(?:Folder|Inner|mine|red|clear|pages|moving|Test|ztlibrary)\b)"));
        static const QRegularExpression letters(QStringLiteral("\\p{L}{2,}"));
        QString left = text;
        for (qsizetype before = -1; before != left.size();) {
            before = left.size();
            left.remove(innermost);
        }
        if (withoutData(left.remove(world.path())).remove(names).contains(letters)) {
            m_found.insert(QStringLiteral("%1 %2: “%3”")
                               .arg(QString::fromLatin1(object.metaObject()->className()), object.objectName(), text));
        }
    }
    void lookAtActions(const QWidget &widget)
    {
        for (const QAction *action : widget.actions()) {
            look(*action, action->text().section(u'\t', 0, 0)); // behind it stand keys
            look(*action, action->toolTip().section(u'\t', 0, 0));
        }
    }
    void lookAtContent(const QWidget &widget)
    {
        if (const auto *button = qobject_cast<const QAbstractButton *>(&widget)) {
            look(*button, button->text());
        } else if (const auto *label = qobject_cast<const QLabel *>(&widget)) {
            look(*label, label->objectName() == QStringLiteral("Keys") ? QString() : label->text());
        } else if (const auto *line = qobject_cast<const QLineEdit *>(&widget)) {
            look(*line, line->placeholderText());
        } else if (const auto *edit = qobject_cast<const QPlainTextEdit *>(&widget)) {
            look(*edit, edit->placeholderText());
            look(*edit, edit->isReadOnly() ? edit->toPlainText() : QString());
        } else if (const auto *box = qobject_cast<const QGroupBox *>(&widget)) {
            look(*box, box->title());
        } else if (const auto *number = qobject_cast<const QSpinBox *>(&widget)) {
            look(*number, number->prefix() + number->suffix() + number->specialValueText());
        } else if (const auto *choice = qobject_cast<const QComboBox *>(&widget)) {
            for (int i = 0; i < choice->count(); ++i) {
                look(*choice, choice->itemText(i));
            }
        } else if (const auto *list = qobject_cast<const QListWidget *>(&widget)) {
            for (int i = 0; i < list->count(); ++i) {
                look(*list, list->item(i)->text());
                look(*list, list->item(i)->toolTip());
            }
        }
    }
    // All of it, shown or not.
    void lookThrough(QWidget &top)
    {
        for (QMenu *each : top.findChildren<QMenu *>()) {
            Q_EMIT each->aboutToShow(); // some are filled then
        }
        QList<QWidget *> all = top.findChildren<QWidget *>();
        all.append(&top);
        for (const QWidget *widget : std::as_const(all)) {
            for (const QString &text : {widget->toolTip(), widget->accessibleName(), widget->accessibleDescription(),
                                        widget->windowTitle()}) {
                look(*widget, text);
            }
            lookAtActions(*widget);
            lookAtContent(*widget);
            if (const auto *parts = dynamic_cast<const ZQAccessibleParts *>(widget)) {
                for (int i = 0; i < parts->accessiblePartCount(); ++i) {
                    const ZQAccessiblePart part = parts->accessiblePart(i);
                    look(*widget, part.name);
                    look(*widget, part.description);
                }
            }
        }
    }
    void lookThroughMenu(const std::function<void()> &open)
    {
        menu.clear();
        whenMenuOpens();
        open();
        EXPECT_FALSE(menu.isEmpty());
        look(window(), menu);
    }
    template <class T>
    T *openSheet()
    {
        return window().findChild<T *>();
    }
    void close(Sheet &sheet)
    {
        QTest::keyClick(&sheet, Qt::Key_Escape);
        EXPECT_TRUE(waitFor([this] { return !window().findChild<Sheet *>(); }));
    }

private:
    Brackets m_brackets;
    QSet<QString> m_found;
};

} // namespace

TEST_F(LanguagesTest, EveryTextOfTheWindowComesFromTheCatalogue)
{
    EXPECT_EQ(window().findChild<QLineEdit *>(QStringLiteral("Search"))->accessibleName(), QStringLiteral("⟦Search⟧"));
    show(b); // with nothing in it
    lookThrough(window());
    show(a);
    run(CommandID::RefineBar);
    for (const QStringList &titles : {QStringList{QStringLiteral("red")}, {QStringLiteral("pages")}, shown()}) {
        select(titles);
        lookThrough(window());
    }
    run(CommandID::ExportPanel);
    run(CommandID::ShowAsList);
    settle();
    lookThrough(window());
    select({QStringLiteral("pages")});
    run(CommandID::Open);
    settle();
    lookThrough(window());
}

TEST_F(LanguagesTest, EveryTextOfMenusOfTheMomentComesFromTheCatalogue)
{
    select({QStringLiteral("red")});
    lookThroughMenu([this] { Q_EMIT grid().contextMenuRequested(grid().mapToGlobal(QPoint(5, 5))); });
    for (QToolButton *choice :
         browser().findChild<BrowserHead *>()->findChildren<QToolButton *>(QStringLiteral("Pop"))) {
        lookThroughMenu([choice] { choice->click(); });
    }
    lookThroughMenu([this] {
        Q_EMIT tree()->customContextMenuRequested(tree()->visualRect(tree()->tree()->indexOf(a->objectID())).center());
    });
    run(CommandID::ShowAsList);
    settle();
    lookThroughMenu([this] { grid().listHead().showMenu(grid().mapToGlobal(QPoint(5, 5))); });
}

TEST_F(LanguagesTest, EveryTextOfThePreferencesComesFromTheCatalogue)
{
    run(CommandID::Preferences);
    auto *const preferences = window().findChild<PreferencesWindow *>();
    ASSERT_TRUE(preferences);
    lookThrough(*preferences);
    preferences->close();
    EXPECT_TRUE(waitFor([this] { return !window().findChild<PreferencesWindow *>(); }));
}

TEST_F(LanguagesTest, EveryTextOfTheSheetsComesFromTheCatalogue)
{
    bool wasAsked = false;
    whenAsked([&](Sheet &sheet) {
        wasAsked = true;
        lookThrough(sheet);
        QTest::keyClick(&sheet, Qt::Key_Escape);
    });
    run(CommandID::Keyboard);
    EXPECT_TRUE(wasAsked);

    run(CommandID::NewFromTemplate);
    ASSERT_TRUE(openSheet<Sheet>());
    lookThrough(*openSheet<Sheet>());
    close(*openSheet<Sheet>());

    run(CommandID::LibraryStatistics);
    ASSERT_TRUE(openSheet<StatisticsSheet>());
    lookThrough(*openSheet<StatisticsSheet>());
    const auto *numbers = openSheet<StatisticsSheet>()->findChild<QPlainTextEdit *>();
    ASSERT_TRUE(waitFor([&] { return numbers->toPlainText().contains(QStringLiteral("Missing files")); }));
    lookThrough(*openSheet<StatisticsSheet>());
    close(*openSheet<StatisticsSheet>());

    CrashReportSheet::show(&window(), person, QString(), [] {});
    ASSERT_TRUE(openSheet<CrashReportSheet>());
    lookThrough(*openSheet<CrashReportSheet>());
    close(*openSheet<CrashReportSheet>());
}

// The preferences: a window beside the main one, whose controls write at once and whose main window follows at once.

#include "Classes/Interface/Preferences/PreferencesWindow.h"
#include "Classes/Application/LibraryCheck.h"
#include "Classes/Interface/Preferences/CloudPane.h"
#include "Classes/Interface/Preferences/LibraryPane.h"
#include "Classes/Interface/Sidebar/SidebarTreeModel.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"
#include "Tests/Classes/Interface/ProtectedFile.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStackedWidget>

#include <algorithm>
#include <map>

namespace {

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

class PreferencesWindowTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        forget();
        ZQTheme::current().setDark(true);
        MainWindowFixture::SetUp();
    }
    void TearDown() override
    {
        MainWindowFixture::TearDown();
        forget();
        ZQTheme::current().setDark(true);
    }
    static void forget()
    {
        for (const char *key : {"PreferencesGeometry", "PreferencesPane", "ShowLibraryItemsTitles", "UseDarkUI",
                                "ShowLibraryItemsExtensions", "SidebarDisplayBadges", "IconTagSize", "SmallTagSize",
                                "ArchiveMaximumTotalSize", "removeFromSidebarAlertSuppress", "UseAutoTagging"}) {
            defaults().removeObjectForKey(QLatin1StringView(key));
        }
    }
    PreferencesWindow *preferences() { return window().findChild<PreferencesWindow *>(); }
    void open()
    {
        press(Qt::Key_Comma, Qt::ControlModifier);
        ASSERT_TRUE(preferences());
        // A window whose parent is active counts as active, too, for the toolkit's own wait.
        ASSERT_TRUE(waitFor([this] { return QApplication::activeWindow() == preferences(); }));
    }
    void close()
    {
        preferences()->close();
        EXPECT_TRUE(waitFor([this] { return !preferences(); }));
    }
    QListWidget &names() { return *preferences()->findChild<QListWidget *>(); }
    QWidget &pane()
    {
        return *qobject_cast<QScrollArea *>(preferences()->findChild<QStackedWidget *>()->currentWidget())->widget();
    }
    void choose(const char *title)
    {
        names().setCurrentItem(names().findItems(QLatin1StringView(title), Qt::MatchExactly).value(0));
        ASSERT_EQ(pane().accessibleName(), QLatin1StringView(title));
    }
    static QString spoken(QWidget *widget)
    {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    }
    template <class T>
    T *control(const char *name)
    {
        for (T *each : pane().findChildren<T *>()) {
            if (each->isVisible() && spoken(each) == QString::fromUtf8(name)) {
                return each;
            }
        }
        return nullptr;
    }
    static bool isOn(const char *key) { return defaults().boolForKey(QLatin1StringView(key)); }
    // What stands in the pane, from the top and from the left; fields by their labels.
    std::string read()
    {
        std::map<std::pair<int, int>, QString> texts;
        for (QWidget *each : pane().findChildren<QWidget *>()) {
            const QPoint place = each->mapTo(&pane(), QPoint());
            const auto *label = qobject_cast<QLabel *>(each);
            const auto *button = qobject_cast<QAbstractButton *>(each);
            const QString text = label ? label->text() : button ? button->text() : QString();
            if (each->isVisible() && !text.isEmpty()) {
                texts[{place.y(), place.x()}] = QString(text).remove(u'&');
            }
        }
        QString result;
        for (const auto &[place, text] : texts) {
            result += text + u'\n';
        }
        return result.toStdString();
    }
    LibraryPane &library() { return *qobject_cast<LibraryPane *>(&pane()); }
    QString findings() { return pane().findChild<QPlainTextEdit *>()->toPlainText(); }
};

} // namespace

TEST_F(PreferencesWindowTest, ThereIsOneAndItComesBackAsItWasLeft)
{
    open();
    EXPECT_EQ(QApplication::focusWidget(), &names());
    QStringList titles;
    for (int row = 0; row < names().count(); ++row) {
        titles.append(pane().accessibleName());
        press(Qt::Key_Down);
    }
    EXPECT_EQ(titles.join(u'|'),
              QStringLiteral("General|Import|Tags|Live folders|Screenshots|Cloud|Services|Privacy|Advanced"));
    for (int i = 0; i < 4; ++i) {
        press(Qt::Key_Up);
    }
    EXPECT_EQ(pane().accessibleName(), QStringLiteral("Screenshots"));
    run(CommandID::Preferences);
    EXPECT_EQ(window().findChildren<PreferencesWindow *>().size(), 1);
    preferences()->resize(820, 600);
    press(Qt::Key_Escape);
    EXPECT_TRUE(waitFor([this] { return !preferences(); }));
    EXPECT_TRUE(window().isVisible());
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    open();
    EXPECT_EQ(preferences()->size(), QSize(820, 600));
    EXPECT_EQ(pane().accessibleName(), QStringLiteral("Screenshots"));
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([this] { return !preferences(); }));
    EXPECT_EQ(window().isVisible(), true) << "only the one in front";
}

TEST_F(PreferencesWindowTest, TheWindowFollowsEachSwitchAtOnce)
{
    open();
    control<QRadioButton>("Light")->click();
    EXPECT_TRUE(waitFor([] { return !ZQTheme::current().isDark(); }));
    EXPECT_FALSE(isOn("UseDarkUI"));
    EXPECT_TRUE(waitFor([this] { return !controller->command(CommandID::DarkTheme)->isChecked(); }));
    run(CommandID::DarkTheme);
    EXPECT_TRUE(waitFor([this] { return control<QRadioButton>("Dark")->isChecked(); })) << "and it follows the window";

    const int withTitle = grid().visualRect(0).height();
    control<QCheckBox>("Show titles below thumbnails")->click();
    EXPECT_TRUE(waitFor([&] { return grid().visualRect(0).height() < withTitle; }));
    EXPECT_FALSE(control<QCheckBox>("Show extensions")->isEnabled()) << "without titles there are none";
    control<QCheckBox>("Show titles below thumbnails")->click();
    EXPECT_TRUE(waitFor([&] { return grid().visualRect(0).height() == withTitle; }));
    const QImage withExtension = grid().grab().toImage();
    control<QCheckBox>("Show extensions")->click();
    EXPECT_TRUE(waitFor([&] { return grid().grab().toImage() != withExtension; }));

    const auto count = [this] {
        return tree()->tree()->indexOf(a->objectID()).data(SidebarTreeModel::CountRole).toString();
    };
    EXPECT_TRUE(waitFor([&] { return count() == QStringLiteral("4"); }));
    control<QCheckBox>("Show how many items each row has")->click();
    EXPECT_TRUE(waitFor([&] { return count().isEmpty(); }));
    control<QCheckBox>("Show how many items each row has")->click();
    EXPECT_TRUE(waitFor([&] { return count() == QStringLiteral("4"); }));

    auto *asks = control<QCheckBox>("Ask before a row is removed");
    EXPECT_TRUE(asks->isChecked());
    asks->click();
    EXPECT_TRUE(isOn("removeFromSidebarAlertSuppress"));
    defaults().setObjectForKey(false, QStringLiteral("removeFromSidebarAlertSuppress"));
    EXPECT_TRUE(waitFor([&] { return asks->isChecked(); }));
}

TEST_F(PreferencesWindowTest, WhatCannotBeWrittenGoesBackAndSaysWhy)
{
    open();
    const auto said = [](QWidget &place) {
        const auto *bubble = place.findChild<ZQNotificationBubble *>(QString(), Qt::FindDirectChildrenOnly);
        return bubble && bubble->isVisible() ? bubble->text() : QString();
    };
    auto *extensions = control<QCheckBox>("Show extensions");
    auto *titles = control<QCheckBox>("Show titles below thumbnails");
    ASSERT_TRUE(defaults().synchronize());
    const ProtectedFile file(defaults().path());
    const QSignalSpy themes(&ZQTheme::current(), &ZQTheme::changed);
    const QSignalSpy light(control<QRadioButton>("Light"), &QRadioButton::toggled);
    const QSignalSpy boxes(titles, &QCheckBox::toggled);
    control<QRadioButton>("Light")->click();
    QTest::keyClick(control<QRadioButton>("Dark"), Qt::Key_Down);
    QTest::keyClick(titles, Qt::Key_Space);
    EXPECT_TRUE(waitFor([&] { return said(*preferences()).contains(QStringLiteral("could not be written")); }));
    settle();
    EXPECT_EQ(themes.count() + light.count() + boxes.count(), 0) << "nothing is shown that does not hold";
    EXPECT_TRUE(control<QRadioButton>("Dark")->isChecked());
    EXPECT_TRUE(waitFor([] { return ZQTheme::current().isDark(); }));
    titles->click();
    EXPECT_TRUE(waitFor([&] { return titles->isChecked(); }));
    EXPECT_TRUE(extensions->isEnabled()) << "with what belongs to it";
    choose("Tags");
    auto *icon = control<QSpinBox>("Icon");
    icon->stepUp();
    EXPECT_TRUE(waitFor([&] { return icon->value() == 32; }));
    close();
    run(CommandID::DarkTheme);
    EXPECT_TRUE(waitFor([&] { return said(window()).contains(QStringLiteral("could not be written")); }));
    EXPECT_TRUE(waitFor([] { return ZQTheme::current().isDark(); }));
    EXPECT_TRUE(controller->command(CommandID::DarkTheme)->isChecked());
}

TEST_F(PreferencesWindowTest, AnotherProcessIsFollowedWithoutBeingAsked)
{
    open();
    ZQUserDefaults other(defaults().path());
    other.setObjectForKey(false, QStringLiteral("UseDarkUI"));
    EXPECT_TRUE(waitFor([] { return !ZQTheme::current().isDark(); }));
    EXPECT_TRUE(waitFor([this] { return control<QRadioButton>("Light")->isChecked(); }));
    other.removeObjectForKey(QStringLiteral("UseDarkUI"));
    EXPECT_TRUE(waitFor([this] { return control<QRadioButton>("Dark")->isChecked(); }));
    EXPECT_FALSE(defaults().isSet(QStringLiteral("UseDarkUI"))) << "what is shown is not what was chosen";
}

TEST_F(PreferencesWindowTest, AnotherProcessIsFollowedInAFolderThatWentAndCameBack)
{
    ZQUserDefaults other(defaults().path());
    const auto follows = [&other](bool isDark) {
        other.setObjectForKey(isDark, QStringLiteral("UseDarkUI"));
        return waitFor([isDark] { return ZQTheme::current().isDark() == isDark; });
    };
    ASSERT_TRUE(follows(false));
    const QString place = QFileInfo(other.path()).path();
    const QString away = place + QStringLiteral(" away");
    ASSERT_TRUE(QDir().rename(place, away));
    EXPECT_TRUE(waitFor([] { return ZQTheme::current().isDark(); })) << "as a new process would be";
    ASSERT_TRUE(QDir().mkpath(place));
    ASSERT_TRUE(QFile::copy(away + u'/' + QFileInfo(other.path()).fileName(), other.path()));
    EXPECT_TRUE(waitFor([] { return !ZQTheme::current().isDark(); }));
    EXPECT_TRUE(follows(true));
    EXPECT_TRUE(follows(false));
    EXPECT_TRUE(QDir(away).removeRecursively());
}

TEST_F(PreferencesWindowTest, ANumberCountsWhenItIsWholeAndADefaultWhereItIsNone)
{
    defaults().setObjectForKey(0, QStringLiteral("SmallTagSize"));
    open();
    choose("Tags");
    EXPECT_EQ(control<QSpinBox>("Small")->value(), 128);
    EXPECT_EQ(defaults().integerForKey(QStringLiteral("SmallTagSize")), 0) << "what is shown is not what was chosen";
    auto *icon = control<QSpinBox>("Icon");
    icon->setFocus();
    icon->selectAll();
    QTest::keyClicks(icon, QStringLiteral("64"));
    EXPECT_EQ(defaults().integerForKey(QStringLiteral("IconTagSize")), 32) << "6 was on the way to it";
    QTest::keyClick(icon, Qt::Key_Return);
    EXPECT_EQ(defaults().integerForKey(QStringLiteral("IconTagSize")), 64);
    EXPECT_TRUE(preferences()->isVisible()) << "Return presses nothing";
    choose("Import");
    auto *size = control<QSpinBox>("Unpacked size, at most");
    EXPECT_EQ(size->value(), 16);
    size->stepUp();
    EXPECT_EQ(defaults().integerForKey(QStringLiteral("ArchiveMaximumTotalSize")), qint64(17) << 30);
    defaults().setObjectForKey(qint64(5) << 30, QStringLiteral("ArchiveMaximumTotalSize"));
    EXPECT_TRUE(waitFor([&] { return size->value() == 5; }));
}

TEST_F(PreferencesWindowTest, WhatBelongsTogetherStandsTogether)
{
    open();
    choose("Import");
    settle();
    EXPECT_EQ(read(), "Import\n"
                      "KINDS OF FILES\n"
                      "Take today's picture formats, too\n"
                      "WebP, HEIC, AVIF, JPEG XL, and Sketch documents that are single files.\n"
                      "FROM EACH FILE\n"
                      "Take the keywords of pictures as tags\n"
                      "Make a thumbnail of small pictures, too\n"
                      "Otherwise pictures of up to 256 KiB are shown from their own file.\n"
                      "FILES OPENED WITH ZELTO\n"
                      "Show them in Recent\n"
                      "ARCHIVES\n"
                      "An archive that holds more is not unpacked.\n"
                      "Unpacked size, at most\n"
                      "Files and folders, at most\n"
                      "Packed how many times smaller, at most\n"
                      "Archives in archives, at most\n");
    choose("Advanced");
    settle();
    EXPECT_NE(read().find("New…\nOpen…\nMove…\nShow in Files\nAnother library"), std::string::npos) << read();
}

TEST_F(PreferencesWindowTest, EachControlHasANameAndAKeyOfItsOwn)
{
    open();
    for (int row = 0; row < names().count(); ++row) {
        names().setCurrentRow(row);
        QStringList keys;
        const auto keep = [&](const QString &text) {
            if (const QKeySequence key = QKeySequence::mnemonic(text); !key.isEmpty()) {
                keys.append(key.toString());
            }
        };
        int stops = 0;
        for (QWidget *widget : pane().findChildren<QWidget *>()) {
            if (const auto *label = qobject_cast<QLabel *>(widget); label && label->isVisible() && label->buddy()) {
                keep(label->text());
            }
            if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus) || widget->focusProxy()) {
                continue;
            }
            ++stops;
            EXPECT_FALSE(spoken(widget).isEmpty())
                << pane().accessibleName().toStdString() << ' ' << widget->metaObject()->className();
            if (const auto *button = qobject_cast<QAbstractButton *>(widget)) {
                keep(button->text());
            }
        }
        EXPECT_GE(stops, 1);
        // The first of them takes the focus without a key of its own.
        EXPECT_GE(keys.size(), stops - 1) << pane().accessibleName().toStdString();
        QStringList different = keys;
        different.removeDuplicates();
        EXPECT_EQ(different, keys) << pane().accessibleName().toStdString();
    }
    choose("Tags");
    press(Qt::Key_T, Qt::AltModifier);
    EXPECT_TRUE(waitFor([] { return !isOn("UseAutoTagging"); }));
}

TEST_F(PreferencesWindowTest, TheLibraryIsOpenedAndVerifiedAsByTheCommands)
{
    open();
    choose("Advanced");
    EXPECT_EQ(pane().findChild<QLabel *>(QStringLiteral("LibraryPath"))->text(), delegate->libraryBundleDirectory());
    control<QPushButton>("Open…")->click();
    EXPECT_TRUE(waitFor([this] { return person.choices.size() == 1; }));
    EXPECT_EQ(person.choices[0].title, QStringLiteral("Please choose the library that you want to open"));

    const auto verify = [this] {
        control<QPushButton>("Verify")->click();
        EXPECT_TRUE(library().isVerifying());
        EXPECT_TRUE(control<QPushButton>("Stop"));
        EXPECT_TRUE(waitFor([this] { return !library().isVerifying(); }));
    };
    verify();
    EXPECT_TRUE(waitFor([this] {
        for (const QLabel *label : pane().findChildren<QLabel *>()) {
            if (label->text() == QStringLiteral("4 items checked. Everything is there.")) {
                return true;
            }
        }
        return false;
    }));
    ASSERT_TRUE(QFile::remove(image(QStringLiteral("red"))->itemURL()));
    QFile changed(image(QStringLiteral("clear"))->itemURL());
    ASSERT_TRUE(changed.open(QIODevice::Append) && changed.write("more") == 4);
    changed.close();
    verify();
    EXPECT_EQ(findings(), LibraryCheck(context(), delegate->libraryDirectory()).run(false).lines().mid(1).join(u'\n'));
    EXPECT_TRUE(findings().contains(QStringLiteral("red"))) << findings().toStdString();
    control<QCheckBox>("Read all of every file, too")->click();
    verify();
    EXPECT_EQ(findings(), LibraryCheck(context(), delegate->libraryDirectory()).run(true).lines().mid(1).join(u'\n'));
    EXPECT_TRUE(findings().contains(QStringLiteral("clear")));
    control<QPushButton>("Verify")->click();
    close(); // in the middle of it
}

TEST_F(PreferencesWindowTest, AQuestionOfTheWindowIsNotHiddenByIt)
{
    open();
    whenAsked([this](Sheet &) {
        EXPECT_FALSE(preferences()->isVisible());
        press(Qt::Key_Return);
    });
    run(CommandID::Keyboard);
    ASSERT_TRUE(preferences());
    EXPECT_TRUE(preferences()->isVisible());
}

TEST_F(PreferencesWindowTest, AQuestionOfThePreferencesHangsFromThem)
{
    open();
    whenAsked([this](Sheet &sheet) {
        EXPECT_TRUE(preferences()->isAncestorOf(&sheet));
        preferences()->close();
        EXPECT_TRUE(preferences()->isVisible()) << "somebody waits for the answer";
        press(Qt::Key_Escape);
    });
    const QStringList buttons{QStringLiteral("Remove"), QStringLiteral("Cancel")};
    EXPECT_EQ(person.ask({QStringLiteral("Remove?"), {}, buttons, {}, true}), 1);
    close();
}

TEST_F(PreferencesWindowTest, ReturnInAPasswordConnectsAndPressesNoOtherButton)
{
    open();
    choose("Cloud");
    static_cast<CloudPane &>(pane()).showPage(QStringLiteral("webdav"));
    control<QLineEdit>("Address")->setText(QStringLiteral("http://127.0.0.1:1"));
    control<QLineEdit>("User")->setText(QStringLiteral("me"));
    auto *password = control<QLineEdit>("Password");
    password->setFocus();
    QTest::keyClicks(password, QStringLiteral("secret"));
    QTest::keyClick(password, Qt::Key_Return);
    const auto isSaid = [this] {
        const QList<QLabel *> problems = pane().findChildren<QLabel *>(QStringLiteral("Problem"));
        return std::any_of(problems.begin(), problems.end(), [](const QLabel *each) {
            return each->isVisible() && each->text().contains(QStringLiteral("127.0.0.1"));
        });
    };
    EXPECT_TRUE(waitFor(isSaid)) << "what came of it";
}

#include "Classes/Interface/Sheets/CrashReportSheet.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Services/CrashReporter.h"
#include "Kit/Files/ZQNewFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {

constexpr int closeCode = 1;
constexpr auto longToRead = std::chrono::seconds(5);

} // namespace

CrashReportSheet::CrashReportSheet(QWidget *window, UserInteraction &user, const QString &text)
    : Sheet(window, zqLocalized("Zelto ended unexpectedly")), m_user(user), m_text(text)
{
    setWidth(600);
    const bool canSend = CrashReporter::address().isValid();
    auto *meaning = new QLabel(
        canSend ? zqLocalized("This is the whole report. It says where in the program it happened, and nothing of your "
                              "library. It is sent only if you send it.")
                : zqLocalized("This is the whole report. It says where in the program it happened, and nothing of your "
                              "library. Copy or save it to pass it on."),
        this);
    meaning->setWordWrap(true);
    content()->addWidget(meaning);
    auto *report = new QPlainTextEdit(text, this);
    report->setReadOnly(true);
    report->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    report->setTabChangesFocus(true);
    report->setAccessibleName(zqLocalized("Crash report"));
    report->setMinimumHeight(260);
    content()->addWidget(report);
    addFooterButton(zqLocalized("C&opy"), &CrashReportSheet::copy);
    addFooterButton(zqLocalized("&Save…"), &CrashReportSheet::save);
    if (canSend) {
        addFooterButton(zqLocalized("Sen&d"), &CrashReportSheet::send);
    }
    addButton(zqLocalized("Close"), closeCode, true);
}

void CrashReportSheet::show(QWidget *window, UserInteraction &user, const QString &text, std::function<void()> seen)
{
    (new CrashReportSheet(window, user, text))->open([seen = std::move(seen)](std::optional<int> code) {
        if (code) {
            seen();
        }
    });
}

void CrashReportSheet::addFooterButton(const QString &title, void (CrashReportSheet::*pressed)())
{
    auto *button = new QPushButton(title, this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, pressed);
    footer()->addWidget(button);
}

void CrashReportSheet::copy()
{
    QGuiApplication::clipboard()->setText(m_text);
    m_user.showNotificationWithText(zqLocalized("Report copied to clipboard!"), NotificationPlace::Window,
                                    usualNotificationTime);
}

// Never over a file that is there.
void CrashReportSheet::save()
{
    const auto path = m_user.chooseFileToSave({.title = zqLocalized("Save Report"),
                                               .prompt = zqLocalized("Save"),
                                               .suggestedName = QStringLiteral("Zelto crash report.txt"),
                                               .startFolder = {},
                                               .extensions = {QStringLiteral("txt")}});
    ZQError error;
    if (path && !zqWriteNewFile(*path, m_text.toUtf8(), &error)) {
        m_user.presentError(error);
    }
}

void CrashReportSheet::send()
{
    CrashReporter::send(m_text, [user = &m_user](const ZQError &error) {
        user->showNotificationWithText(
            error.isNull() ? zqLocalized("Report sent. Thank you!")
                           : zqFormat(zqLocalized("The report was not sent: %@"), {error.localizedDescription()}),
            NotificationPlace::Window, longToRead);
    });
    done(closeCode);
}

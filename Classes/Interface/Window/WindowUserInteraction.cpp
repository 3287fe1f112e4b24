#include "Classes/Interface/Window/WindowUserInteraction.h"

#include "Classes/Application/QuestionWithdrawal.h"
#include "Classes/Interface/Sheets/QuestionSheets.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQProgressLine.h"

#include <QApplication>
#include <QBoxLayout>
#include <QDBusInterface>
#include <QDBusMessage>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <atomic>
#include <future>

namespace {

// The line belongs to the main thread; what is told from other threads is gathered and shown in one go.
class LineProgress : public UserProgress, public std::enable_shared_from_this<LineProgress>
{
public:
    LineProgress(double maximum, QString text) : m_maximum(maximum), m_text(std::move(text)) {}
    ~LineProgress() override
    {
        // The last one out may be any thread.
        if (m_line) {
            zqOnMainThread([line = m_line] { delete line.data(); });
        }
    }
    void setMaximum(double maximum) override
    {
        {
            const ZQLockGuard guard(m_lock);
            m_maximum = maximum;
        }
        show();
    }
    void advanceBy(double amount) override
    {
        {
            const ZQLockGuard guard(m_lock);
            m_value += amount;
        }
        show();
    }
    void setText(const QString &text) override
    {
        {
            const ZQLockGuard guard(m_lock);
            m_text = text;
        }
        show();
    }
    void setCountText(const QString &format) override
    {
        {
            const ZQLockGuard guard(m_lock);
            m_countText = format;
        }
        show();
    }
    void setLine(ZQProgressLine *line) // main thread, before others hold it
    {
        m_line = line;
        apply();
    }

private:
    void show()
    {
        if (m_isPending.exchange(true)) {
            return;
        }
        zqOnMainThread([self = weak_from_this()] {
            if (const auto progress = self.lock()) {
                progress->m_isPending = false;
                progress->apply();
            }
        });
    }
    void apply()
    {
        const ZQLockGuard guard(m_lock);
        if (m_line) {
            const QLocale locale;
            const QVariantList numbers = {locale.toString(qint64(m_value)), locale.toString(qint64(m_maximum))};
            // What names the work may hold what stands for a number, too; the last two are the numbers.
            const qsizetype last = m_countText.lastIndexOf(QStringLiteral("%@"));
            const qsizetype first = last > 0 ? m_countText.lastIndexOf(QStringLiteral("%@"), last - 1) : -1;
            const QString kept = first < 0 ? QString() : zqFormat(m_countText.mid(first), numbers);
            const QString all = m_countText.isEmpty() ? m_text : zqFormat(m_countText, numbers);
            m_line->setText(all.chopped(kept.size()), kept);
            m_line->setFraction(m_maximum > 0 ? m_value / m_maximum : -1);
        }
    }

    ZQMutex m_lock;
    double m_maximum ZQ_GUARDED_BY(m_lock);
    double m_value ZQ_GUARDED_BY(m_lock) = 0;
    QString m_text ZQ_GUARDED_BY(m_lock);
    QString m_countText ZQ_GUARDED_BY(m_lock);
    std::atomic<bool> m_isPending = false;
    QPointer<ZQProgressLine> m_line;
};

QWidget *windowToAskIn(QWidget *mainWindow)
{
    QWidget *const active = QApplication::activeWindow();
    const bool isBeside =
        active && active->parentWidget() == mainWindow && active->property(Sheet::hasOwnProperty).toBool();
    return isBeside ? active : mainWindow;
}

QString filterFor(const FileChoice &choice)
{
    if (choice.extensions.isEmpty()) {
        return {};
    }
    QStringList patterns;
    for (const QString &extension : choice.extensions) {
        patterns.append(QStringLiteral("*.") + extension);
    }
    return zqFormat(zqLocalized("Supported files (%@)"), {patterns.join(u' ')});
}

// For work that comes before the main window. The window goes with its line.
ZQProgressLine *lineInWindowOfItsOwn(const std::function<void()> &cancel)
{
    constexpr int margin = 24;
    constexpr int width = 420;
    auto *holder = new QWidget;
    holder->setObjectName(QStringLiteral("ProgressWindow"));
    holder->setWindowTitle(QStringLiteral("Zelto"));
    auto *line = new ZQProgressLine(bool(cancel), holder);
    if (cancel) {
        QObject::connect(line, &ZQProgressLine::cancelled, line, cancel);
    }
    auto *layout = new QVBoxLayout(holder);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(line);
    holder->setFixedWidth(width);
    QObject::connect(line, &QObject::destroyed, holder, &QObject::deleteLater);
    holder->show();
    return line;
}

} // namespace

WindowUserInteraction::WindowUserInteraction() = default;
WindowUserInteraction::~WindowUserInteraction() = default;

void WindowUserInteraction::setPlaces(const Places &places)
{
    m_places = places;
}

void WindowUserInteraction::presentError(const ZQError &error)
{
    UserQuestion question;
    question.message = error.userInfo.value(ZQError::descriptionKey).toString();
    question.informativeText = error.userInfo.value(ZQError::failureReasonKey).toString();
    if (question.message.isEmpty()) {
        question.message = error.localizedDescription();
    }
    question.buttons = {zqLocalized("OK")};
    ask(question);
}

int WindowUserInteraction::ask(const UserQuestion &question)
{
    if (hasWindow()) {
        return QuestionSheet(windowToAskIn(m_places.window), question).ask();
    }
    QMessageBox box;
    constexpr qsizetype longest = 1500;
    box.setText(zqForLabel(question.message, longest));
    box.setInformativeText(zqForLabel(question.informativeText, longest));
    QList<QAbstractButton *> buttons;
    for (qsizetype i = 0; i < question.buttons.size(); ++i) {
        const bool isLast = i + 1 == question.buttons.size();
        QPushButton *const button =
            box.addButton(question.buttons[i], isLast ? QMessageBox::RejectRole : QMessageBox::AcceptRole);
        buttons.append(button);
        if (isLast && question.isLastDefault) {
            box.setDefaultButton(button);
        }
    }
    if (question.withdrawal) {
        question.withdrawal->setEnd([&box] { box.reject(); });
    }
    box.exec();
    if (question.withdrawal) {
        question.withdrawal->setEnd(nullptr);
    }
    const qsizetype chosen = buttons.indexOf(box.clickedButton());
    return int(chosen < 0 ? question.buttons.size() - 1 : chosen);
}

void WindowUserInteraction::showNotificationWithText(const QString &text, NotificationPlace position,
                                                     std::chrono::milliseconds time)
{
    if (!zqIsMainThread()) {
        zqOnMainThread([this, text, position, time] { showNotificationWithText(text, position, time); });
        return;
    }
    showNotification(text, position, time, {});
}

void WindowUserInteraction::showNotification(const QString &text, NotificationPlace position,
                                             std::chrono::milliseconds time, const QList<ZQNotificationAction> &actions)
{
    if (!hasWindow()) {
        return;
    }
    const auto slot = size_t(position);
    QWidget *places[] = {m_places.window, m_places.browser, m_places.sidebar};
    QWidget *place = places[slot] && places[slot]->isVisible() ? places[slot] : m_places.window.data();
    if (!m_bubbles[slot]) {
        m_bubbles[slot] = new ZQNotificationBubble(m_places.window);
    }
    m_bubbles[slot]->showText(text, place, position == NotificationPlace::Window, time, actions);
}

void WindowUserInteraction::importDidEnd(const ImportOutcome &outcome)
{
    if (onImportEnd) {
        onImportEnd(outcome);
    } else {
        UserInteraction::importDidEnd(outcome);
    }
}

void WindowUserInteraction::showSystemNotification(const QString &title, const QString &text)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    call << QStringLiteral("Zelto") << 0U << QStringLiteral("zelto") << title << text << QStringList() << QVariantMap()
         << -1;
    if (!QDBusConnection::sessionBus().send(call)) {
        showNotificationWithText(title, NotificationPlace::Window, std::chrono::seconds(3));
    }
}

QStringList WindowUserInteraction::chooseFilesToOpen(const FileChoice &choice)
{
    QFileDialog dialog(m_places.window, choice.title, {}, filterFor(choice));
    dialog.setFileMode(choice.directory ? QFileDialog::Directory
                       : choice.several ? QFileDialog::ExistingFiles
                                        : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::ShowDirsOnly, choice.directory);
    if (choice.directory && QFileInfo(choice.startFolder).isDir()) { // it may be gone since
        dialog.setDirectory(choice.startFolder);
    }
    if (!choice.prompt.isEmpty()) {
        dialog.setLabelText(QFileDialog::Accept, choice.prompt);
    }
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles() : QStringList();
}

std::optional<QString> WindowUserInteraction::chooseFileToSave(const FileChoice &choice)
{
    QFileDialog dialog(m_places.window, choice.title, {}, filterFor(choice));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // Whoever asks for a name asks about replacing: some dialogs add the suffix after they looked whether it is taken.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.selectFile(choice.suggestedName);
    if (!choice.extensions.isEmpty()) {
        dialog.setDefaultSuffix(choice.extensions.first());
    }
    if (!choice.prompt.isEmpty()) {
        dialog.setLabelText(QFileDialog::Accept, choice.prompt);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return dialog.selectedFiles().first();
}

// From the main thread in a loop of its own. From another thread the sheet hangs there while the main thread goes on,
// so that quitting can take it away: a loop of its own below that of the quitting could never end.
template <class SheetClass, class... Arguments>
typename SheetClass::Answer WindowUserInteraction::answerOf(const typename SheetClass::Answer &withoutWindow,
                                                            Arguments... arguments)
{
    using Answer = typename SheetClass::Answer;
    if (zqIsMainThread()) {
        if (!hasWindow()) {
            return withoutWindow;
        }
        SheetClass sheet(m_places.window, arguments...);
        const int code = sheet.run();
        return sheet.answer(code);
    }
    const auto answer = std::make_shared<std::promise<Answer>>();
    std::future<Answer> waiting = answer->get_future();
    const bool isAsked = zqOnMainThreadAndWait([&] {
        if (!hasWindow()) {
            answer->set_value(withoutWindow);
            return;
        }
        auto *sheet = new SheetClass(m_places.window, arguments...);
        sheet->open([&withoutWindow, answer, sheet](std::optional<int> code) {
            answer->set_value(code ? sheet->answer(*code) : withoutWindow);
        });
    });
    return isAsked ? waiting.get() : withoutWindow;
}

bool WindowUserInteraction::resolveUnreadableFiles(QList<FileConflict> &conflicts)
{
    const auto answer = answerOf<UnreadableFilesSheet>({false, conflicts}, conflicts);
    conflicts = answer.conflicts;
    return answer.goesOn;
}

std::optional<DuplicateAnswers> WindowUserInteraction::resolveDuplicates(const QList<DuplicatePair> &pairs,
                                                                         bool archivesFollow)
{
    if (pairs.isEmpty()) {
        return DuplicateAnswers();
    }
    // Without a person what changes least: nothing new comes in.
    return answerOf<DuplicatesSheet>(DuplicateAnswers(QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard)),
                                     pairs, archivesFollow);
}

void WindowUserInteraction::dismissQuestions()
{
    if (m_places.window) {
        Sheet::dismissOpened(m_places.window);
    }
}

std::shared_ptr<UserProgress> WindowUserInteraction::beginProgress(const QString &text, double maximum,
                                                                   std::function<void()> cancel)
{
    auto progress = std::make_shared<LineProgress>(maximum, text);
    // Very short work never shows a line: it is gone before the main thread gets here.
    zqOnMainThread([this, weak = std::weak_ptr<LineProgress>(progress), cancel = std::move(cancel)] {
        const auto alive = weak.lock();
        if (!alive) {
            return;
        }
        if (!m_places.window) {
            alive->setLine(lineInWindowOfItsOwn(cancel));
            return;
        }
        if (!m_places.sidebar || !m_places.progress) {
            return;
        }
        auto *line = new ZQProgressLine(bool(cancel), m_places.sidebar);
        if (cancel) {
            connect(line, &ZQProgressLine::cancelled, line, cancel);
        }
        m_places.progress->addWidget(line);
        alive->setLine(line);
    });
    return progress;
}

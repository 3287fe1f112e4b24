#pragma once

#include "Classes/Application/ImportOutcome.h"
#include "Kit/Foundation/ZQError.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

class QuestionWithdrawal;

// A question with its buttons; the first is the default, "Cancel" (or the answer that changes least) the last.
struct UserQuestion
{
    QString message;
    QString informativeText;
    QStringList buttons;
    QString suppressionKey; // the user default a "Do not ask again" box sets to true; empty: no box
    bool isDestructive = false;
    std::shared_ptr<QuestionWithdrawal> withdrawal = {}; // null: it stays until it is answered
    bool isLastDefault = false;                          // the last button is the default
};

// One path under review before an import.
struct FileConflict
{
    QString path;
    bool isValid = true;    // readable
    bool isIncluded = true; // kept in the import
    QString reason = {};    // why it is not readable, and what to do: a sentence; empty where nobody looked
    static FileConflict fileConflictWithPath(const QString &path) { return {path, true, true, {}}; }
};

enum class DuplicateChoice { Discard = 1, Relink = 2, KeepBoth = 3 };

// An asset of the library that an import brings again, and the new copy.
struct DuplicatePair
{
    QString SHA1;
    QString existingTitle;
    QString existingPath;       // the file
    QString existingThumbPath;  // a picture of it: the thumbnail, or the file when it has none
    QStringList existingPlaces; // titles of the projects it is in
    QDateTime existingImportDate;
    QString newTitle;
    QString newPath; // in an archive: below the archive's path
    QString newThumbPath;
    qint64 bytes = 0;
    int pixelWidth = 0;
    int pixelHeight = 0;
    QString newAddress = {};      // where the copy was taken from; empty: it is a file of the person's
    bool goesIntoProject = false; // and not into the library alone
};

// What is to become of duplicates.
struct DuplicateAnswers
{
    DuplicateAnswers() = default;
    DuplicateAnswers(QList<DuplicateChoice> forPairs, std::optional<DuplicateChoice> forOthers = {})
        : choices(std::move(forPairs)), forTheRest(forOthers)
    {
    }
    bool operator==(const DuplicateAnswers &) const = default;

    QList<DuplicateChoice> choices;            // of the pairs asked about, in their order
    std::optional<DuplicateChoice> forTheRest; // of all that archives bring later; nothing: the person is asked then
};

// A line of long work with its bar. Ends when destroyed. Any thread.
class UserProgress
{
public:
    virtual ~UserProgress() = default;
    virtual void setMaximum(double maximum) = 0;
    virtual void advanceBy(double amount) = 0;
    virtual void setText(const QString &text) = 0;
    // Where there is room for one line only: instead of the text, with what is done and the maximum for each "%@".
    virtual void setCountText(const QString & /*format*/) {}
};

struct FileChoice
{
    QString title;
    QString prompt;         // the confirming button
    QString suggestedName;  // in the name field
    QString startFolder;    // where the choice of folders begins, a path; empty: anywhere
    QStringList extensions; // empty: any
    bool directory = false; // choose folders
    bool several = false;
};

// Where a notification is shown.
enum class NotificationPlace { Window = 0, Browser = 1, Sidebar = 2 };

constexpr std::chrono::milliseconds usualNotificationTime{2500};

// What a person who is in another program may want to hear, with one thing to do about it.
struct AwayNotice
{
    QString title;
    QString text;
    QString action;
    std::function<void()> run; // later, or never
};

// The only way the logic reaches a person. Called on the main thread unless stated; implementations: the window's
// sheets, the command line's flags and prompts, a script in tests. A question without a person to answer it takes the
// answer that changes least.
class UserInteraction
{
public:
    virtual ~UserInteraction() = default;

    virtual void presentError(const ZQError &error) = 0; // an alert with "OK"
    virtual int ask(const UserQuestion &question) = 0;   // the index of the button
    // Fades in over its place and goes by itself.
    virtual void showNotificationWithText(const QString &text, NotificationPlace position,
                                          std::chrono::milliseconds time) = 0;
    virtual void importDidEnd(const ImportOutcome &outcome)
    {
        if (const QString text = outcome.text(); !text.isEmpty()) {
            showNotificationWithText(text, NotificationPlace::Browser, outcome.time);
        }
    }
    virtual void showSystemNotification(const QString &title, const QString &text) = 0;
    // As the one above, at the end of an import that took so long that the person may be elsewhere.
    virtual void importDidEndLate(const QString &title, const QString &text) { showSystemNotification(title, text); }
    // Through the desktop, and only where the person is not at the window, which says so itself.
    virtual void tellWhenAway(const AwayNotice & /*notice*/) {}
    virtual QStringList chooseFilesToOpen(const FileChoice &choice) = 0; // empty: cancelled
    virtual std::optional<QString> chooseFileToSave(const FileChoice &choice) = 0;

    // The two questions of an import. Any thread: they wait for the answer, or for `dismissQuestions`.
    // Lets the person uncheck files that cannot be read. False stops the import.
    virtual bool resolveUnreadableFiles(QList<FileConflict> &conflicts) = 0;
    // Nothing when the person cancelled the import. `archivesFollow`: it has archives, whose duplicates are asked about
    // later where the answer is not for them too.
    virtual std::optional<DuplicateAnswers> resolveDuplicates(const QList<DuplicatePair> &pairs,
                                                              bool archivesFollow) = 0;

    // Ends the questions that other threads wait for, as if the person had cancelled each.
    virtual void dismissQuestions() {}

    // Shows progress until the answer is destroyed; `cancel` is called on the main thread. Any thread.
    virtual std::shared_ptr<UserProgress> beginProgress(const QString &text, double maximum,
                                                        std::function<void()> cancel) = 0;
};

#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Sheets/Sheet.h"

#include <memory>

class QCheckBox;
class QButtonGroup;
class QLabel;
class QListWidget;
class QPushButton;
class ZQThumbnailLoader;

// A message with buttons and, when asked for, a box that keeps it from being asked again.
class QuestionSheet : public Sheet
{
    Q_OBJECT
public:
    QuestionSheet(QWidget *window, const UserQuestion &question);
    // The index of the button; the last one's when it was withdrawn. Keeps the suppression when the first was taken.
    int ask();

private:
    QString m_suppressionKey;
    QCheckBox *m_suppress = nullptr;
    std::shared_ptr<QuestionWithdrawal> m_withdrawal;
};

// Which of the unreadable files stay in an import.
class UnreadableFilesSheet : public Sheet
{
    Q_OBJECT
public:
    UnreadableFilesSheet(QWidget *window, QList<FileConflict> conflicts);

    struct Answer
    {
        bool goesOn = false; // else the import stops
        QList<FileConflict> conflicts;
    };
    Answer answer(int code) const; // to the code the sheet ended with

private:
    void updateImportButtonStatus();

    QList<FileConflict> m_conflicts;
    QListWidget *m_list;
    QPushButton *m_continue;
};

// One duplicate after another: discard, use the one there is, or import anyway.
class DuplicatesSheet : public Sheet
{
    Q_OBJECT
public:
    DuplicatesSheet(QWidget *window, const QList<DuplicatePair> &pairs, bool archivesFollow = false);
    using Answer = std::optional<DuplicateAnswers>;
    Answer answer(int code) const; // to the code the sheet ended with

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void done(int code) override;

private:
    class Card;
    void showPair();

    QList<DuplicatePair> m_pairs;
    const bool m_archivesFollow;
    DuplicateAnswers m_answers;
    ZQThumbnailLoader *m_pictures;
    Card *m_existing;
    Card *m_new;
    QButtonGroup *m_options;
    QCheckBox *m_applyToAll;
};

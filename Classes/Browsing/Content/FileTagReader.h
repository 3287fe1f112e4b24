#pragma once

#include "Classes/Editing/EditContext.h"

#include <QObject>
#include <QTimer>

// Has the files of items read for what other programs gave them: of those selected, and of those on screen when their
// window comes to the front. The reading itself happens beside the window. Main thread.
class FileTagReader : public QObject
{
    Q_OBJECT
public:
    using Items = std::function<QList<ZQObjectID>()>;

    FileTagReader(const EditContext &edits, Items selected, Items onScreen, QObject *parent = nullptr);

    void selectionDidChange(); // the files are read when it rests and nothing is being edited
    void windowDidActivate();

    static constexpr qsizetype mostAtOnce = 500;

private:
    void read(QList<ZQObjectID> items);

    const EditContext &m_edits;
    Items m_selected;
    Items m_onScreen;
    QTimer m_rest;
};

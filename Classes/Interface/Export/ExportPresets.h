#pragma once

#include "Classes/Export/ExportItem.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

class QUndoStack;
class UserInteraction;

// The export presets of the window, in their order, and the changes of them that can be taken back. Adding and deleting
// store the whole list; an order is stored only with the next of these. Main thread.
class ExportPresets : public QObject
{
    Q_OBJECT
public:
    // As they are stored. A list that cannot be written is said to `user`, and goes on in memory.
    ExportPresets(QUndoStack *undoStack, UserInteraction &user, QObject *parent = nullptr);

    const QList<ExportItem> &items() const { return m_items; }
    qsizetype indexOf(const QString &identifier) const; // -1 for none
    void addItem(const ExportItem &item);               // at the end; its icon is drawn
    void deleteItem(const QString &identifier);
    // To a place between the others, counted with the preset where it still is.
    void moveItem(const QString &identifier, qsizetype dropIndex);

    // What a person calls it: its title, and what it makes.
    static QString description(const ExportItem &item);

Q_SIGNALS:
    void changed();

private:
    void perform(const QString &name, std::function<void()> redo, std::function<void()> undo);
    void insert(qsizetype index, const ExportItem &item);
    void remove(const QString &identifier);
    void place(const QString &identifier, qsizetype index);
    void store();

    QPointer<QUndoStack> m_undoStack; // null: nothing is taken back
    UserInteraction &m_user;
    QList<ExportItem> m_items;
};

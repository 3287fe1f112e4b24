#include "Classes/Interface/TextFields.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>

namespace {

class UndoYielder : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() != QEvent::ShortcutOverride || object != QApplication::focusWidget()) {
            return false;
        }
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool isForWindow = (key->matches(QKeySequence::Undo) && !TextFields::canUndo()) ||
                                 (key->matches(QKeySequence::Redo) && !TextFields::canRedo());
        if (isForWindow) {
            event->ignore();
        }
        return isForWindow;
    }
};

} // namespace

namespace TextFields {

bool haveFocus()
{
    QWidget *focus = QApplication::focusWidget();
    return focus && (focus->inherits("QLineEdit") || focus->inherits("QPlainTextEdit"));
}

bool forward(const char *slot)
{
    return haveFocus() && QMetaObject::invokeMethod(QApplication::focusWidget(), slot);
}

bool canUndo()
{
    const auto *line = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    const auto *text = qobject_cast<QPlainTextEdit *>(QApplication::focusWidget());
    return (line && line->isUndoAvailable()) || (text && text->document()->isUndoAvailable());
}

bool canRedo()
{
    const auto *line = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    const auto *text = qobject_cast<QPlainTextEdit *>(QApplication::focusWidget());
    return (line && line->isRedoAvailable()) || (text && text->document()->isRedoAvailable());
}

void yieldUndo(QObject *owner)
{
    QCoreApplication::instance()->installEventFilter(new UndoYielder(owner));
}

} // namespace TextFields

#include "Classes/Interface/TextFields.h"

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>

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

} // namespace TextFields

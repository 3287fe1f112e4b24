#include "Classes/Interface/TextFields.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>

#include <algorithm>
#include <iterator>

namespace {

// A list of completions hands the keys it gets to its field.
bool isField(const QObject *object)
{
    const auto *widget = qobject_cast<const QWidget *>(object);
    const QWidget *proxy = widget ? widget->focusProxy() : nullptr;
    const QWidget *field = proxy ? proxy : widget;
    return field &&
           (field->inherits("QLineEdit") || field->inherits("QPlainTextEdit") || field->inherits("QAbstractSpinBox"));
}

// On some desktops the toolkit has Ctrl+D delete a letter, Ctrl+K the rest of the line, Ctrl+U all of it, and so on.
bool isLetterForWindow(const QKeyEvent &key)
{
    constexpr Qt::KeyboardModifiers held = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const bool isLetter = key.key() >= Qt::Key_A && key.key() <= Qt::Key_Z;
    if (!isLetter || (key.modifiers() & held) != Qt::ControlModifier) {
        return false;
    }
    constexpr QKeySequence::StandardKey ofFields[] = {QKeySequence::Undo, QKeySequence::Redo,  QKeySequence::Cut,
                                                      QKeySequence::Copy, QKeySequence::Paste, QKeySequence::SelectAll};
    return std::none_of(std::begin(ofFields), std::end(ofFields),
                        [&key](QKeySequence::StandardKey each) { return key.matches(each); });
}

bool isUndoForWindow(const QKeyEvent &key)
{
    return (key.matches(QKeySequence::Undo) && !TextFields::canUndo()) ||
           (key.matches(QKeySequence::Redo) && !TextFields::canRedo());
}

class KeyYielder : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject *object, QEvent *event) override
    {
        const bool isAsked = event->type() == QEvent::ShortcutOverride;
        if ((!isAsked && event->type() != QEvent::KeyPress) || !isField(object)) {
            return false;
        }
        const auto &key = *static_cast<QKeyEvent *>(event);
        const bool isForWindow = isLetterForWindow(key) || (isAsked && isUndoForWindow(key));
        if (isForWindow) {
            event->setAccepted(!isAsked); // what arrives as a key is no command just now
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

void yieldKeys(QObject *owner)
{
    QCoreApplication::instance()->installEventFilter(new KeyYielder(owner));
}

} // namespace TextFields

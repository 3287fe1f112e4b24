#include "Classes/Services/SoftwareUpdater.h"

#include <QGuiApplication>

bool SoftwareUpdater::areTestKeysHeld() const
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        return false;
    }
    const Qt::KeyboardModifiers held = QGuiApplication::queryKeyboardModifiers();
    return held.testFlag(Qt::AltModifier) && held.testFlag(Qt::ControlModifier);
}

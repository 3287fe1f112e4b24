#pragma once

#include <QVariantMap>

// The preferences every part reads: their keys and registered defaults.
class PreferencesController
{
public:
    static void registerDefaultPreferences();
    static QVariantMap defaultPreferences();
    // Whether a part reads or writes it, with a default or without.
    static bool isKnown(const QString &key);
};

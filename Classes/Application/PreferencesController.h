#pragma once

#include <QVariantMap>

// The preferences every part reads: their keys and registered defaults.
class PreferencesController
{
public:
    static void registerDefaultPreferences();
    static QVariantMap defaultPreferences();
};

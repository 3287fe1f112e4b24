#pragma once

#include <QString>

class PreferencesPane;

// What the panes of the preferences hold: only settings that something obeys.
namespace PreferencesPanes {

struct Plan
{
    const char *title;
    const char *icon;
    void (*fill)(PreferencesPane &pane);
};

const QList<Plan> &all(); // in their order, without that of the library

} // namespace PreferencesPanes

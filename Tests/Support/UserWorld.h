#pragma once

#include <QTemporaryDir>

// Everything the application keeps for a person, and its temporary files, go into folders below `world` from here on.
void redirectUserWorld(const QTemporaryDir &world);

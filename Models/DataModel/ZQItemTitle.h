#pragma once

#include "Kit/Foundation/ZQError.h"

// Titles of items, after which their files are named: title and name always agree. Any thread.

// Null when files of an item may be called so.
ZQError zqErrorForItemTitle(const QString &title, const QString &extension);

// The nearest to any text that a file of an item may be called; `whenEmpty`, made so too: nothing of it is left.
QString zqItemTitleForText(const QString &text, const QString &extension, const QString &whenEmpty);

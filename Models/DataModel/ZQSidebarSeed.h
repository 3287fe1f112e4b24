#pragma once

#include "Kit/Foundation/ZQError.h"

class ZQManagedObjectContext;

// The fixed entries of the sidebar: labels, Library, Recent, Screenshots, the size and colour tags, and on a fresh
// library one project and one tag as samples. Adds what is missing (the samples only with the labels they belong to);
// does not save. False, with nothing added, when the store cannot say what is missing.
bool zqSeedFixedSidebar(ZQManagedObjectContext &context, ZQError *error = nullptr);

// Gives the fixed entries their titles in the current language; does not save.
void zqUpdateFixedTitles(ZQManagedObjectContext &context);

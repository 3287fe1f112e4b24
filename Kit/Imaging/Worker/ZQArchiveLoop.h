#pragma once

#include "Kit/Imaging/ZQArchiveProtocol.h"

// The work of a worker that unpacks: answers questions on the socket it was born with until the other side closes it.
// `area` is the shared memory that contents go into. `interception`, for programs that test what its faults cost, is
// asked before each answer is sent and may change it.
void zqRunArchiveLoop(char *area, void (*interception)(const ZQArchiveQuestion &question, ZQArchiveAnswer &answer));

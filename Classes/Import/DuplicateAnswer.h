#pragma once

#include "Classes/Application/UserInteraction.h"

#include <QString>

#include <optional>

class PendingImportFile;

// The answer about duplicates as it is written on a command line and kept with a request: "keep", "discard" or
// "relink". Any thread.
QString nameOfDuplicateAnswer(std::optional<DuplicateChoice> answer); // empty without one
// Nothing for any other text: then the person is asked.
std::optional<DuplicateChoice> duplicateAnswerNamed(const QString &name);
// A request that goes on asks no more.
bool noteDuplicateAnswer(DuplicateChoice answer, PendingImportFile &pending, ZQError *error);

#pragma once

#include <QString>

// Writes the whole collection of sample files below `folder` (made when missing), with "CONTENTS.txt" saying what is
// what. Answers the relative path of the first file that could not be written; empty when all were.
namespace SampleCollection {

enum class Huge { Without, With };
QString write(const QString &folder, Huge huge);

} // namespace SampleCollection

#pragma once

#include "Classes/Interface/Sheets/Sheet.h"

struct KeyLine
{
    QString keys; // "Ctrl+N"
    QString what; // "New Project"
};

// Every key and what it does, in columns.
class KeysSheet : public Sheet
{
    Q_OBJECT
public:
    KeysSheet(QWidget *window, const QList<KeyLine> &lines);
};

#pragma once

#include "Classes/Interface/Sheets/Sheet.h"

// What a description of an upload address may say, to be read beside it. Main thread.
class DescriptionGuide : public Sheet
{
    Q_OBJECT
public:
    explicit DescriptionGuide(QWidget *window);
};

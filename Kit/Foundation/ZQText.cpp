#include "Kit/Foundation/ZQText.h"

QString zqPlainLine(const QString &text)
{
    QString line = text;
    line.removeIf([](QChar c) { return c == QLatin1Char('\r') || c == QLatin1Char('\n') || c == QLatin1Char('\t'); });
    return line.normalized(QString::NormalizationForm_C);
}

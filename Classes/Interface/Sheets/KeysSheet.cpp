#include "Classes/Interface/Sheets/KeysSheet.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QGridLayout>
#include <QLabel>

namespace {
constexpr int columns = 3;
constexpr int gapBetweenColumns = 34;
} // namespace

KeysSheet::KeysSheet(QWidget *window, const QList<KeyLine> &lines) : Sheet(window, zqLocalized("Keyboard"))
{
    setWidth(960);
    auto *table = new QGridLayout;
    table->setVerticalSpacing(4);
    table->setHorizontalSpacing(12);
    const int rows = (int(lines.size()) + columns - 1) / columns;
    for (int i = 0; i < lines.size(); ++i) {
        const int column = 3 * (i / rows); // keys, what they do, a gap
        auto *keys = new QLabel(lines[i].keys, this);
        keys->setObjectName(QStringLiteral("Keys"));
        auto *what = new QLabel(lines[i].what, this);
        what->setObjectName(QStringLiteral("SmallMuted"));
        keys->setBuddy(what);
        table->addWidget(keys, i % rows, column);
        table->addWidget(what, i % rows, column + 1);
        table->setColumnStretch(column + 1, 1);
        table->setColumnMinimumWidth(column + 2, i / rows + 1 < columns ? gapBetweenColumns : 0);
    }
    content()->addLayout(table);
    addButton(zqLocalized("OK"), 1, true);
}

#include "Classes/Application/ImportOutcome.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QStringList>

#include <algorithm>

void ImportOutcome::summarize()
{
    const bool saysWhy = notImported == 1 && refused.size() == 1 && !text.isEmpty() && !isCancelled;
    summary = notImported > 0 && !imported.isEmpty() && !saysWhy
                  ? zqFormat(zqLocalized("%d imported, %d not"), {imported.size(), notImported})
                  : QString();
    if (isCancelled && !summary.isEmpty()) {
        summary = zqLocalized("Import cancelled") + u'\n' + summary;
    }
}

void ImportOutcome::add(const ImportOutcome &part)
{
    QStringList texts;
    for (const ImportOutcome *each : {static_cast<const ImportOutcome *>(this), &part}) {
        const ImportOutcome &other = each == this ? part : *this;
        const bool isContradicted = each->saysNothingCame && !other.imported.isEmpty();
        if (!each->text.isEmpty() && !isContradicted && !texts.contains(each->text)) {
            texts.append(each->text);
        }
    }
    text = texts.join(u'\n');
    saysNothingCame = saysNothingCame && part.saysNothingCame;
    time = std::max(time, part.time);
    target = imported.isEmpty() ? part.target : target;
    imported += part.imported;
    refused += part.refused;
    notImported += part.notImported;
    isCancelled = isCancelled || part.isCancelled;
    hasMore = part.hasMore;
    summarize();
}

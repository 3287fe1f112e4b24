#include "Classes/Application/ImportOutcome.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>

QString ImportOutcome::textForNothing()
{
    return zqLocalized("Nothing to import!");
}

QString ImportOutcome::text() const
{
    return (saysNothingCame ? texts + QStringList(textForNothing()) : texts).join(u'\n');
}

void ImportOutcome::summarize()
{
    const bool saysWhy = notImported == 1 && refused.size() == 1 && !text().isEmpty() && !isCancelled;
    summary = notImported > 0 && !imported.isEmpty() && !saysWhy
                  ? zqFormat(zqLocalized("%d imported, %d not"), {imported.size(), notImported})
                  : QString();
    if (isCancelled && !summary.isEmpty()) {
        summary = zqLocalized("Import cancelled") + u'\n' + summary;
    }
}

void ImportOutcome::add(const ImportOutcome &part)
{
    for (const QString &each : part.texts) {
        if (!texts.contains(each)) {
            texts.append(each);
        }
    }
    saysNothingCame = (saysNothingCame && part.imported.isEmpty()) || (part.saysNothingCame && imported.isEmpty());
    time = std::max(time, part.time);
    target = imported.isEmpty() ? part.target : target;
    imported += part.imported;
    refused += part.refused;
    notImported += part.notImported;
    isCancelled = isCancelled || part.isCancelled;
    hasMore = part.hasMore;
    summarize();
}

#include "Classes/Import/DuplicateAnswer.h"

#include "Classes/Import/PendingImport.h"

namespace {
struct Name
{
    DuplicateChoice answer;
    const char *name;
};
constexpr Name names[] = {
    {DuplicateChoice::KeepBoth, "keep"}, {DuplicateChoice::Discard, "discard"}, {DuplicateChoice::Relink, "relink"}};
} // namespace

QString nameOfDuplicateAnswer(std::optional<DuplicateChoice> answer)
{
    for (const Name &each : names) {
        if (answer == each.answer) {
            return QLatin1String(each.name);
        }
    }
    return {};
}

std::optional<DuplicateChoice> duplicateAnswerNamed(const QString &name)
{
    for (const Name &each : names) {
        if (name == QLatin1String(each.name)) {
            return each.answer;
        }
    }
    return std::nullopt;
}

bool noteDuplicateAnswer(DuplicateChoice answer, PendingImportFile &pending, ZQError *error)
{
    PendingImport answered = pending.request();
    answered.duplicates = nameOfDuplicateAnswer(answer);
    return pending.setRequest(answered, error);
}

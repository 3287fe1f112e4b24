#include "Kit/Persistence/ZQCollator.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQPredicateNode.h"
#include "Kit/Persistence/ZQResemblance.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"

#include <sqlite3.h>

// The functions behind translated predicates. Each answers for text only, and 0 for anything else, as evaluation in
// memory does.

namespace {

std::optional<QString> textOf(sqlite3_value *value)
{
    if (sqlite3_value_type(value) != SQLITE_TEXT) {
        return std::nullopt;
    }
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_value_text(value));
    const int length = sqlite3_value_bytes(value);
    return length ? QString::fromUtf8(bytes, length) : QStringLiteral("");
}

void answerText(sqlite3_context *context, const QByteArray &text)
{
    sqlite3_result_text64(context, text.isEmpty() ? "" : text.constData(), static_cast<sqlite3_uint64>(text.size()),
                          SQLITE_TRANSIENT, SQLITE_UTF8);
}

void fold(sqlite3_context *context, int, sqlite3_value **values)
{
    if (const std::optional<QString> text = textOf(values[0])) {
        const ZQFoldOptions options = ZQFoldOptions::fromFlags(sqlite3_value_int(values[1]));
        answerText(context, zqFold(*text, options.caseInsensitive, options.diacriticInsensitive).toUtf8());
    }
}

template <ZQComparisonOperator op>
void compareTexts(sqlite3_context *context, int count, sqlite3_value **values)
{
    const std::optional<QString> left = textOf(values[0]);
    const std::optional<QString> right = textOf(values[1]);
    const ZQFoldOptions options = ZQFoldOptions::fromFlags(count > 2 ? sqlite3_value_int(values[2]) : 0);
    const bool holds = left && right && zqCompareScalars(*left, *right, op, options, false);
    sqlite3_result_int(context, holds ? 1 : 0);
}

void resembles(sqlite3_context *context, int, sqlite3_value **values)
{
    const std::optional<QString> text = textOf(values[1]);
    const bool isData = sqlite3_value_type(values[0]) == SQLITE_BLOB;
    const auto test = text && isData ? zqResemblanceFor(*text) : nullptr;
    const auto *bytes = static_cast<const char *>(sqlite3_value_blob(values[0]));
    const auto size = static_cast<size_t>(sqlite3_value_bytes(values[0]));
    sqlite3_result_int(context, test && (*test)(bytes ? std::string_view(bytes, size) : std::string_view()) ? 1 : 0);
}

// The inverse of the encoding in ZQSQLList.cpp.
void decode(sqlite3_context *context, int, sqlite3_value **values)
{
    const std::optional<QString> text = textOf(values[0]);
    if (!text || text->isEmpty()) {
        return;
    }
    const QByteArray payload = text->mid(1).toLatin1();
    const QByteArray bytes = QByteArray::fromHex(payload);
    switch (text->at(0).unicode()) {
    case u'd':
        return sqlite3_result_double(context, payload.toDouble());
    case u'i':
        return sqlite3_result_int64(context, payload.toLongLong());
    case u't':
        return answerText(context, bytes);
    default:
        sqlite3_result_blob64(context, bytes.isEmpty() ? "" : bytes.constData(),
                              static_cast<sqlite3_uint64>(bytes.size()), SQLITE_TRANSIENT);
    }
}

int collate(void *collator, int sizeA, const void *a, int sizeB, const void *b)
{
    const std::string_view textA(static_cast<const char *>(a), static_cast<size_t>(sizeA));
    const std::string_view textB(static_cast<const char *>(b), static_cast<size_t>(sizeB));
    // Sorting is one step, however much it is; without the rules of a language it is over in a moment.
    return zqIsStatementCancelled() ? textA.compare(textB)
                                    : static_cast<const ZQCollator *>(collator)->compareUTF8(textA, textB);
}

struct Function
{
    const char *name;
    int arguments;
    void (*call)(sqlite3_context *, int, sqlite3_value **);
};
using Op = ZQComparisonOperator;
constexpr Function functions[] = {
    {"zq_fold", 2, fold},
    {"zq_decode", 1, decode},
    {"zq_begins_with", 3, compareTexts<Op::BeginsWith>},
    {"zq_ends_with", 3, compareTexts<Op::EndsWith>},
    {"zq_contains", 2, compareTexts<Op::Contains>},
    {"zq_is_in", 2, compareTexts<Op::In>},
    {"zq_like", 3, compareTexts<Op::Like>},
    {"zq_matches", 3, compareTexts<Op::Matches>},
    {"zq_resembles", 2, resembles},
};

} // namespace

int zqRegisterSQLFunctions(sqlite3 *connection)
{
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    for (const Function &function : functions) {
        const int code = sqlite3_create_function_v2(connection, function.name, function.arguments, flags, nullptr,
                                                    function.call, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) {
            return code;
        }
    }
    auto collator = std::make_unique<ZQCollator>();
    const int code = sqlite3_create_collation_v2(connection, "zq_localized", SQLITE_UTF8, collator.get(), collate,
                                                 [](void *held) { delete static_cast<ZQCollator *>(held); });
    // Unlike the functions' destructors, the collation's is not called when registering fails.
    if (code == SQLITE_OK) {
        static_cast<void>(collator.release());
    }
    return code;
}

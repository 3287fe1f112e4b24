#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <string_view>

// What RESEMBLES asks of data: whether it is like what a text describes. Only who knows what the data mean can tell;
// the first word of the text is the name of one of these tests. Data without a test resemble nothing, and what is no
// data neither.
//
// All functions may be called from any thread.

using ZQResemblance = std::function<bool(std::string_view data)>;
// Makes the test that a whole text describes; an empty function when it describes none.
using ZQResemblanceMaker = ZQResemblance (*)(const QString &text);

void zqRegisterResemblance(const QString &name, ZQResemblanceMaker maker); // before it is first asked for
// Null when there is none. Those asked for last are made once.
std::shared_ptr<const ZQResemblance> zqResemblanceFor(const QString &text);

#include "Classes/Capture/WebCaptureRequest.h"

#include "Classes/Capture/WebCaptureErrors.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QRegularExpression>
#include <QUrl>

namespace {

constexpr qsizetype longestAddress = 8192; // as of those that arrive from browsers

QString refuse(const QString &description, ZQError *error)
{
    zqSetError(error, WebCaptureErrors::with(WebCaptureErrors::BadAddress, description));
    return {};
}

// A scheme, and no server with its port ("localhost:8080").
bool hasScheme(const QString &text)
{
    static const QRegularExpression scheme(QStringLiteral(R"(^[a-zA-Z][a-zA-Z0-9+.-]*:(?!\d))"));
    return scheme.match(text).hasMatch();
}

QString completed(const QString &text)
{
    if (hasScheme(text)) {
        return text;
    }
    // Servers on this machine have no certificate.
    const QString host = QUrl(QStringLiteral("https://") + text).host();
    const bool isThisMachine = zqReachOfHostName(host) == ZQAddressReach::Machine;
    return (isThisMachine ? QStringLiteral("http://") : QStringLiteral("https://")) + text;
}

} // namespace

QString WebCaptureRequest::addressFor(const QString &typed, bool mayReadFiles, ZQError *error)
{
    const QString text = typed.trimmed();
    if (text.isEmpty()) {
        return refuse(zqLocalized("Type the address of a web page."), error);
    }
    if (text.size() > longestAddress) {
        return refuse(zqLocalized("The address is too long for a web page."), error);
    }
    const QUrl url(completed(text), QUrl::TolerantMode);
    const QString scheme = url.scheme().toLower();
    if (scheme == QStringLiteral("file") && mayReadFiles && url.isValid() && url.isLocalFile()) {
        return QString::fromLatin1(url.toEncoded());
    }
    if (url.isValid() && scheme != QStringLiteral("http") && scheme != QStringLiteral("https")) {
        return refuse(
            zqFormat(zqLocalized("“%@” is no web page: only addresses with http and https can be captured."), {text}),
            error);
    }
    if (!url.isValid() || url.host().isEmpty()) {
        return refuse(zqFormat(zqLocalized("“%@” is no address of a web page."), {text}), error);
    }
    return QString::fromLatin1(url.toEncoded());
}

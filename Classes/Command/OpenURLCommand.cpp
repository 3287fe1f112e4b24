#include "Classes/Command/Commands.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Services/ProtocolCommand.h"
#include "Classes/Services/ProtocolManager.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QJsonObject>

namespace {

int capture(const QString &url, ProtocolHandling *window, CommandContext &context)
{
    if (!window) {
        return context.fail(zqLocalized("capturing what a browser shows needs the window: run `zelto` with this "
                                        "address instead, or `zelto snap web` with that of the page"));
    }
    window->handleURL(url);
    return 0;
}

// A person at the window answers when they like, and perhaps never: nobody at a terminal waits for that.
int askInWindow(const QString &url, ProtocolHandling &window, CommandContext &context)
{
    window.handleURL(url);
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("asked"), true}});
    } else {
        context.print(zqLocalized("the window asks whether to import the images"));
    }
    return 0;
}

} // namespace

int zqRunOpenURL(const OpenURLRequest &request, CommandContext &context)
{
    ZQError error;
    const auto command = ProtocolCommand::fromURL(request.url, &error);
    if (!command) {
        return context.fail(error.localizedDescription());
    }
    ProtocolHandling *const window = context.delegate->protocolManager();
    if (command->kind == ProtocolCommand::Kind::Snap) {
        return capture(request.url, window, context);
    }
    const auto reason = request.isAgreed ? std::nullopt : ProtocolManager::reasonToAsk(*command);
    if (reason && window) {
        return askInWindow(request.url, *window, context);
    }
    if (reason) {
        return context.fail(zqFormat(zqLocalized("nothing was imported from “%@”, which nobody has agreed to yet. %@ "
                                                 "Add --yes if you asked for this in the browser"),
                                     {command->pageHost(), *reason}));
    }
    const ImageDownloadRequest &images = command->images;
    return zqRunDownload({images.images, images.pageUrl, images.pageTitle, !images.importAll.isEmpty(), true}, context);
}

#include "Classes/Command/Commands.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Services/ProtocolCommand.h"
#include "Classes/Services/ProtocolManager.h"
#include "Kit/Foundation/ZQLocalized.h"

int zqRunOpenURL(const QString &url, CommandContext &context)
{
    ZQError error;
    const auto command = ProtocolCommand::fromURL(url, &error);
    if (!command) {
        return context.fail(error.localizedDescription());
    }
    if (ProtocolHandling *const manager = context.delegate->protocolManager()) {
        manager->handleURL(url);
        return 0;
    }
    if (command->kind == ProtocolCommand::Kind::Snap) {
        return context.fail(zqLocalized("capturing what a browser shows needs the window: run `zelto` with this "
                                        "address instead, or `zelto snap web` with that of the page"));
    }
    const auto question = ProtocolManager::questionAbout(*command);
    if (question && context.delegate->userInteraction().ask(
                        {*question, {}, {zqLocalized("Import"), zqLocalized("Cancel")}, {}}) != 0) {
        return context.fail(zqFormat(zqLocalized("nothing was imported from “%@”, which nobody has agreed to yet: open "
                                                 "the address in the window, or name the images to `zelto download`"),
                                     {command->pageHost()}));
    }
    const ImageDownloadRequest &images = command->images;
    return zqRunDownload({images.images, images.pageUrl, images.pageTitle, !images.importAll.isEmpty()}, context);
}

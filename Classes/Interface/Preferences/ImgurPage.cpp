#include "Classes/Interface/Preferences/ImgurPage.h"

#include "Classes/Sharing/ImgurService.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QLineEdit>

ImgurPage::ImgurPage(QWidget *parent) : CloudAccountPage(QStringLiteral("imgur"), QStringLiteral("Imgur"), parent)
{
    m_client = addPreference(zqLocalized("Client &ID"), ImgurService::clientIDKey, {});
    addNote(zqLocalized("Imgur asks every program for an identifier, and limits what comes with each. Register one of "
                        "your own, choose “OAuth 2 authorization without a callback URL”, and paste the Client ID that "
                        "it shows, 15 letters and digits, here."));
    addLink(zqLocalized("Register at imgur.com"), QUrl(QStringLiteral("https://api.imgur.com/oauth2/addclient")));
    addNote(zqLocalized("Pictures are uploaded without an account: whoever has the link sees them."));
    ImgurPage::refresh();
}

void ImgurPage::refresh()
{
    CloudAccountPage::refresh();
    const bool isWrong = !m_client->text().trimmed().isEmpty() && ImgurService::clientID().isEmpty();
    showProblem(isWrong ? zqLocalized("A Client ID has letters and digits only.") : QString());
}

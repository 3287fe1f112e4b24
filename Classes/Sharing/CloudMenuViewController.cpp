#include "Classes/Sharing/CloudMenuViewController.h"

#include "Classes/Sharing/DBSession.h"
#include "Kit/Operations/ZQNotificationCenter.h"

void CloudMenuViewController::createSharedSession()
{
    DBSession::sharedSession();
}

void CloudMenuViewController::updateCloudMenu()
{
    ZQNotificationCenter::defaultCenter().postNotification(menuDidUpdate);
}

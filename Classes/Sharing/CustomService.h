#pragma once

#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/UploadDescription.h"

#include <utility>

// A service that a description defines.
class CustomService : public CloudService
{
public:
    explicit CustomService(UploadDescription description) : m_description(std::move(description)) {}
    static QString identifierOf(const QString &name) { return QStringLiteral("custom:") + name; }
    QString identifier() const override { return identifierOf(m_description.name); }
    QString title() const override { return m_description.name; }
    QString whatIsMissing() const override;
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override;

private:
    const UploadDescription m_description;
};

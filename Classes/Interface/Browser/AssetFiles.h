#pragma once

#include <QImage>
#include <QList>
#include <QMimeData>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// A file of the library, and what it is called there.
struct Asset
{
    QString path;
    QString title;
};

// Files of the library for another program: their paths where they are called as their titles are, else such a name
// for them in a temporary folder that stays until the application quits. Nothing is looked for or made before somebody
// asks. Small files are copied for their names, others and those of a large selection get them by hard links, and where
// that cannot be they go under the names they have. Nobody is told to move them. Main thread.
class AssetFiles : public QMimeData
{
    Q_OBJECT
public:
    static inline const QString copiedFilesType =
        QStringLiteral("x-special/gnome-copied-files"); // "copy" and addresses

    explicit AssetFiles(std::function<QList<Asset>()> look);

    void lookNow();                                     // for their paths and titles
    void setForClipboard() { m_isForClipboard = true; } // says that they are copied
    void setPicture(std::function<QImage()> picture);   // made when it is asked for, once
    QStringList paths() const;                          // as another program gets them

    QStringList formats() const override;

protected:
    QVariant retrieveData(const QString &format, QMetaType type) const override;

private:
    const std::function<QList<Asset>()> m_look;
    std::function<QImage()> m_picture;
    bool m_isForClipboard = false;
    mutable std::optional<QList<Asset>> m_assets;
    mutable std::optional<QStringList> m_paths;
    mutable std::optional<QImage> m_image;
};

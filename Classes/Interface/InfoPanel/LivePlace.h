#pragma once

#include <QToolButton>

// Says that what is selected lies in a live folder, and where: the path with its middle left out where there is no
// room, whole in the tool tip. A click shows the place in the desktop's file manager. Hidden without a path.
class LivePlace : public QToolButton
{
    Q_OBJECT
public:
    explicit LivePlace(QWidget *parent = nullptr);
    // Of a file, or of the folder that holds several.
    void setPath(const QString &path, bool isFolder);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void elide();

    QString m_path;
    bool m_isFolder = false;
};

#pragma once

#include <QFrame>
#include <QStringList>

class FlowLayout;
class QLineEdit;

// Tags as chips, with a field that completes the known ones, in their order. Enter or a comma adds, Backspace in the
// empty field takes the last away, Down shows what is known.
class TagField : public QFrame
{
    Q_OBJECT
public:
    explicit TagField(QWidget *parent = nullptr);
    void setTags(const QStringList &tags, bool hasOthers); // others: some items carry more
    void setKnownTags(const QStringList &tags);
    QStringList tags() const { return m_tags; }
    void dropTyped(); // what is half typed was meant for other items

Q_SIGNALS:
    void edited(const QStringList &tags);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    void rebuild();
    void add(const QString &text);
    void remove(const QString &tag);

    QStringList m_tags;
    bool m_hasOthers = false;
    FlowLayout *m_flow;
    QLineEdit *m_edit;
    QList<QWidget *> m_chips;
};

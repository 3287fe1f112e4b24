#include "Classes/Interface/Browser/NearnessSlider.h"

#include "Classes/Browsing/Search/LikeArgument.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

NearnessSlider::NearnessSlider(QWidget *parent) : QWidget(parent), m_slider(new QSlider(Qt::Horizontal, this))
{
    constexpr int restMilliseconds = 60;
    m_slider->setRange(0, LikeArgument::farthestApart);
    m_slider->setValue(LikeArgument::farthestApart);
    m_slider->setSingleStep(3);
    m_slider->setPageStep(10);
    m_slider->setFixedWidth(110);
    m_slider->setFocusPolicy(Qt::TabFocus);
    m_slider->setAccessibleName(zqLocalized("How near"));
    describe();
    m_rest.setSingleShot(true);
    m_rest.setInterval(restMilliseconds);
    connect(m_slider, &QSlider::valueChanged, this, [this] {
        describe();
        if (!m_rest.isActive()) {
            m_rest.start();
        }
    });
    connect(&m_rest, &QTimer::timeout, this, &NearnessSlider::write);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    for (QWidget *each :
         {static_cast<QWidget *>(new QLabel(zqLocalized("Nearer"), this)), static_cast<QWidget *>(m_slider),
          static_cast<QWidget *>(new QLabel(zqLocalized("Wider"), this))}) {
        row->addWidget(each);
    }
    row->addSpacing(8); // a margin would stay on its side
    for (QLabel *label : findChildren<QLabel *>()) {
        label->setObjectName(QStringLiteral("Muted"));
    }
    hide();
}

void NearnessSlider::setText(const QString &searchText)
{
    m_text = searchText;
    const auto like = LikeArgument::in(searchText);
    setVisible(like.has_value());
    if (like && !m_rest.isActive() && !m_slider->isSliderDown()) {
        const QSignalBlocker blocker(m_slider);
        m_slider->setValue(like->argument.apart);
        describe();
    }
}

// The number of the slider itself is one that nobody knows.
void NearnessSlider::describe()
{
    LikeArgument argument;
    argument.apart = m_slider->value();
    const QString text =
        zqFormat(zqLocalized("Likeness %d %% or more"), {LikeArgument::likeness(argument.farthestBits())});
    m_slider->setAccessibleDescription(text);
    m_slider->setToolTip(text);
}

void NearnessSlider::write()
{
    const auto like = LikeArgument::in(m_text);
    if (!like || like->argument.apart == m_slider->value()) {
        return;
    }
    LikeArgument argument = like->argument;
    argument.apart = m_slider->value();
    QString text = m_text;
    text.replace(like->position, like->length, SearchManager::quoted(argument.text()));
    Q_EMIT searchRequested(text);
}

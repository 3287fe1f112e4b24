#include "Classes/Interface/Export/ExportEditPanel.h"

#include "Classes/Export/ExportNames.h"
#include "Classes/Interface/Export/PresetIcon.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include <algorithm>

namespace {

constexpr int usualQuality = 80;
constexpr QSize colorSize(14, 14);
constexpr qsizetype longestPattern = 200;

int tagOf(const QComboBox *menu)
{
    return menu->currentData().toInt();
}

void choose(QComboBox *menu, int tag)
{
    menu->setCurrentIndex(std::max(0, menu->findData(tag)));
}

// What the number fields take.
int mostOf(int sizeTag)
{
    return sizeTag == ExportEditPanel::Percentage ? ExportItem::mostPercent : ExportItem::mostPixels;
}

QList<std::pair<QString, int>> formats()
{
    QList<std::pair<QString, int>> entries = {{zqLocalized("Original"), ExportEditPanel::Original}};
    for (const int type : zqFileTypes()) {
        const QString name = zqNameOfFileType(type);
        entries.append({zqFileTypeNamesItself(type) ? name : zqFormat(zqLocalized("%@, extension kept"), {name}),
                        ExportEditPanel::tagOfFileType(type)});
    }
    return entries;
}

} // namespace

ExportEditPanel::ExportEditPanel(QWidget *parent)
    : QWidget(parent), m_rows(new QFormLayout(this)), m_format(makeMenu(zqLocalized("Format"), formats())),
      m_size(makeMenu(zqLocalized("Size"), {{zqLocalized("Original size"), OriginalSize},
                                            {zqLocalized("Width and height"), WidthAndHeight},
                                            {zqLocalized("Percentage"), Percentage}})),
      m_color(makeMenu(zqLocalized("Color"), {})), m_numbers(new QWidget(this)),
      m_limit(new QIntValidator(0, ExportItem::mostPixels, this)), m_first(makeNumberField()),
      m_second(makeNumberField()), m_quality(new QSpinBox(this)), m_pattern(new QLineEdit(this)),
      m_problem(new QLabel(this)), m_archive(new QCheckBox(zqLocalized("Put everything into one zip archive"), this))
{
    makeColors();
    makeRows();
    connect(m_format, &QComboBox::currentIndexChanged, this, &ExportEditPanel::formatDidChange);
    connect(m_size, &QComboBox::currentIndexChanged, this, &ExportEditPanel::sizeDidChange);
    connect(m_pattern, &QLineEdit::textChanged, this, &ExportEditPanel::checkPattern);
    for (QLineEdit *field : {m_first, m_second, m_pattern}) {
        connect(field, &QLineEdit::returnPressed, this, &ExportEditPanel::save);
    }
    start();
}

QComboBox *ExportEditPanel::makeMenu(const QString &name, const QList<std::pair<QString, int>> &entries)
{
    auto *menu = new QComboBox(this);
    menu->setAccessibleName(name);
    menu->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon); // the panel can be narrow
    menu->setMinimumContentsLength(4);
    for (const auto &[text, tag] : entries) {
        menu->addItem(text, tag);
    }
    return menu;
}

QLineEdit *ExportEditPanel::makeNumberField()
{
    auto *field = new QLineEdit(m_numbers);
    field->setValidator(m_limit);
    return field;
}

// The second and the third colour share an image: one entry stands for both.
void ExportEditPanel::makeColors()
{
    const std::pair<QString, int> colors[] = {{zqLocalized("Red"), 0},
                                              {zqLocalized("Orange"), 1},
                                              {zqLocalized("Green"), 3},
                                              {zqLocalized("Blue"), 4},
                                              {zqLocalized("Violet"), 5}};
    m_color->setIconSize(colorSize);
    for (const auto &[name, tag] : colors) {
        ExportItem colored;
        colored.iconColor = tag;
        const QImage image = PresetIcon::baseImage(colored.iconName(), colorSize * devicePixelRatioF());
        m_color->addItem(QPixmap::fromImage(image), name, tag);
    }
}

void ExportEditPanel::makeRows()
{
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setHorizontalSpacing(12);
    m_rows->setVerticalSpacing(8);
    m_rows->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    auto *numbers = new QHBoxLayout(m_numbers);
    numbers->setContentsMargins(0, 0, 0, 0);
    numbers->setSpacing(8);
    numbers->addWidget(m_first);
    numbers->addWidget(m_second);
    m_quality->setRange(1, ExportItem::mostQuality);
    m_quality->setButtonSymbols(QSpinBox::NoButtons);
    m_quality->setSuffix(QStringLiteral(" %"));
    m_quality->setAccessibleName(zqLocalized("Quality"));
    m_pattern->setAccessibleName(zqLocalized("File names"));
    m_pattern->setPlaceholderText(QStringLiteral("{title}"));
    m_pattern->setMaxLength(int(longestPattern));
    m_pattern->setToolTip(zqLocalized("How files are called: {title}, {index}, {width}, {height} and {date} stand for "
                                      "what each file has. Empty: the title."));
    m_problem->setObjectName(QStringLiteral("SmallMuted"));
    m_problem->setWordWrap(true);
    const auto addRow = [this](const QString &name, QWidget *field) {
        auto *label = new QLabel(name, this);
        label->setObjectName(QStringLiteral("SmallMuted"));
        label->setBuddy(field);
        m_rows->addRow(label, field);
    };
    addRow(zqLocalized("Format"), m_format);
    addRow(zqLocalized("Size"), m_size);
    m_rows->addRow(QString(), m_numbers);
    addRow(zqLocalized("Quality"), m_quality);
    addRow(zqLocalized("Color"), m_color);
    addRow(zqLocalized("File names"), m_pattern);
    m_rows->addRow(m_problem);
    m_rows->addRow(m_archive);
    m_archive->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_archive->setToolTip(m_archive->text());
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    auto *cancel = new QPushButton(zqLocalized("Cancel"), this);
    auto *save = new QPushButton(zqLocalized("Save"), this);
    save->setProperty("primary", true);
    connect(cancel, &QPushButton::clicked, this, &ExportEditPanel::cancelRequested);
    connect(save, &QPushButton::clicked, this, &ExportEditPanel::save);
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(save);
    m_rows->addRow(buttons);
    QWidget *before = m_format; // fields that belong to one above come right after it
    for (QWidget *const each : std::initializer_list<QWidget *>{m_size, m_first, m_second, m_quality, m_color,
                                                                m_pattern, m_archive, cancel, save}) {
        setTabOrder(before, each);
        before = each;
    }
}

void ExportEditPanel::start()
{
    startWith(ExportItem::firstExportItems().value(1));
}

void ExportEditPanel::startWith(const ExportItem &like)
{
    choose(m_format, tagOfFileType(like.imageFileType));
    formatDidChange();
    choose(m_size, !like.imageFileType                   ? OriginalSize
                   : like.imageWidth || like.imageHeight ? WidthAndHeight
                   : like.imagePercentage                ? Percentage
                                                         : OriginalSize);
    sizeDidChange();
    const auto text = [](std::optional<int> number) { return number ? QString::number(*number) : QString(); };
    if (tagOf(m_size) == Percentage) {
        m_first->setText(text(like.imagePercentage));
    } else if (tagOf(m_size) == WidthAndHeight) {
        m_first->setText(text(like.imageWidth));
        m_second->setText(text(like.imageHeight));
    }
    m_quality->setValue(like.imageQuality.value_or(usualQuality));
    choose(m_color, like.iconColor == 2 ? 1 : like.iconColor);
    m_pattern->setText(like.namePattern);
    m_archive->setChecked(like.archive);
    checkPattern();
}

int ExportEditPanel::tagOfFileType(std::optional<int> fileType)
{
    if (!fileType) {
        return Original;
    }
    return *fileType == ::PNG ? int(PNG) : *fileType == ::JPEG ? int(JPEG) : FirstOther + *fileType;
}

std::optional<int> ExportEditPanel::fileType() const
{
    switch (const int tag = tagOf(m_format)) {
    case Original:
        return std::nullopt;
    case PNG:
        return ::PNG;
    case JPEG:
        return ::JPEG;
    default:
        return tag - FirstOther;
    }
}

void ExportEditPanel::formatDidChange()
{
    const bool isOriginal = tagOf(m_format) == Original;
    if (isOriginal) {
        choose(m_size, OriginalSize);
    }
    m_size->setEnabled(!isOriginal);
    m_rows->setRowVisible(m_quality, ExportItem::hasQuality(fileType()));
    sizeDidChange();
}

void ExportEditPanel::sizeDidChange()
{
    const int tag = tagOf(m_size);
    m_first->clear();
    m_second->clear();
    m_limit->setTop(mostOf(tag));
    m_rows->setRowVisible(m_numbers, tag != OriginalSize);
    m_first->setVisible(tag != OriginalSize);
    m_second->setVisible(tag == WidthAndHeight);
    const QString first = tag == Percentage ? zqLocalized("% size") : zqLocalized("Width");
    m_first->setPlaceholderText(first);
    m_first->setAccessibleName(first);
    m_second->setPlaceholderText(zqLocalized("Height"));
    m_second->setAccessibleName(zqLocalized("Height"));
}

void ExportEditPanel::checkPattern()
{
    const QString problem = ExportNames::problemOfPattern(m_pattern->text().trimmed());
    m_problem->setText(problem);
    m_rows->setRowVisible(m_problem, !problem.isEmpty());
}

void ExportEditPanel::save()
{
    if (m_rows->isRowVisible(m_problem)) {
        m_pattern->setFocus();
        return;
    }
    Q_EMIT saveRequested();
}

ExportItem ExportEditPanel::item() const
{
    ExportItem result;
    result.imageFileType = fileType();
    const int size = tagOf(m_size);
    const int most = mostOf(size);
    const int first = std::min(m_first->text().toInt(), most); // the fields take any number of as many digits
    const int second = std::min(m_second->text().toInt(), most);
    if (size == Percentage && first >= 1) {
        result.imagePercentage = first;
    } else if (size == WidthAndHeight) {
        result.imageWidth = first > 0 ? std::optional(first) : std::nullopt;
        result.imageHeight = second >= 1 ? std::optional(second) : std::nullopt;
    }
    if (ExportItem::hasQuality(result.imageFileType)) {
        result.imageQuality = m_quality->value();
    }
    result.namePattern = m_pattern->text().trimmed();
    result.iconColor = tagOf(m_color);
    result.archive = m_archive->isChecked();
    return result;
}

#include "Classes/Interface/Sheets/QuestionSheets.h"

#include "Classes/Application/QuestionWithdrawal.h"
#include "Classes/Interface/ItemPictures.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Kit/Widgets/ZQThumbnailLoader.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QDesktopServices>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QUrl>

namespace {
constexpr int acceptCode = 1;
constexpr int cancelCode = 2;
constexpr qsizetype longestText = 1500;
constexpr qsizetype pictureBytes = qsizetype(16) << 20;

// A title as the file is called.
QString withExtension(const QString &title, const QString &path)
{
    const QString extension = QFileInfo(path).suffix();
    return extension.isEmpty() || title.endsWith(u'.' + extension) ? title : title + u'.' + extension;
}
} // namespace

QuestionSheet::QuestionSheet(QWidget *window, const UserQuestion &question)
    : Sheet(window, question.message), m_suppressionKey(question.suppressionKey), m_withdrawal(question.withdrawal)
{
    if (!question.informativeText.isEmpty()) {
        auto *text = new QLabel(zqForLabel(question.informativeText, longestText), this);
        text->setObjectName(QStringLiteral("Muted"));
        text->setWordWrap(true);
        content()->addWidget(text);
    }
    if (!m_suppressionKey.isEmpty()) {
        m_suppress = new QCheckBox(zqLocalized("Do not ask again"), this);
        footer()->insertWidget(0, m_suppress);
    }
    for (qsizetype i = question.buttons.size() - 1; i >= 0; --i) {
        const bool isDefault = i == (question.isLastDefault ? question.buttons.size() - 1 : 0);
        QPushButton *button = addButton(question.buttons[i], int(i) + acceptCode, isDefault);
        button->setProperty("destructive", question.isDestructive && i == 0);
    }
}

int QuestionSheet::ask()
{
    if (m_withdrawal) {
        m_withdrawal->setEnd([this] { reject(); });
    }
    const int code = run();
    if (m_withdrawal) {
        m_withdrawal->setEnd(nullptr);
    }
    if (m_suppress && m_suppress->isChecked()) {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(true, m_suppressionKey);
    }
    return code - acceptCode;
}

UnreadableFilesSheet::UnreadableFilesSheet(QWidget *window, QList<FileConflict> conflicts)
    : Sheet(window, zqLocalized("Some of the files are unreadable by Zelto and can't be imported!")),
      m_conflicts(std::move(conflicts)), m_list(new QListWidget(this))
{
    setWidth(560);
    m_list->setAccessibleName(zqLocalized("Files"));
    m_list->setMinimumHeight(190);
    for (const FileConflict &conflict : std::as_const(m_conflicts)) {
        const QString reason = conflict.isValid            ? QString()
                               : conflict.reason.isEmpty() ? zqLocalized("This file cannot be read.")
                                                           : zqShortened(conflict.reason, longestText);
        auto *row = new QListWidgetItem(reason.isEmpty() ? conflict.path : conflict.path + u'\n' + reason, m_list);
        row->setData(Qt::UserRole, conflict.path);
        row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        row->setCheckState(conflict.isIncluded && conflict.isValid ? Qt::Checked : Qt::Unchecked);
        row->setForeground(zqColor(conflict.isValid ? ZQColorRole::Text : ZQColorRole::Danger));
        row->setToolTip(row->text());
    }
    content()->addWidget(m_list);
    auto *reveal = new QPushButton(zqLocalized("Show in Folder"), this);
    reveal->setAutoDefault(false);
    connect(reveal, &QPushButton::clicked, this, [this] {
        if (const QListWidgetItem *row = m_list->currentItem()) {
            QDesktopServices::openUrl(
                QUrl::fromLocalFile(QFileInfo(row->data(Qt::UserRole).toString()).absolutePath()));
        }
    });
    footer()->insertWidget(0, reveal);
    addButton(zqLocalized("Stop Import"), cancelCode, false);
    m_continue = addButton(zqLocalized("Continue"), acceptCode, true);
    connect(m_list, &QListWidget::itemChanged, this, &UnreadableFilesSheet::updateImportButtonStatus);
    updateImportButtonStatus();
}

void UnreadableFilesSheet::updateImportButtonStatus()
{
    bool any = false;
    for (int row = 0; row < m_list->count(); ++row) {
        any = any || m_list->item(row)->checkState() == Qt::Checked;
    }
    m_continue->setEnabled(any);
}

UnreadableFilesSheet::Answer UnreadableFilesSheet::answer(int code) const
{
    Answer answer{code == acceptCode, m_conflicts};
    for (int row = 0; row < m_list->count(); ++row) {
        answer.conflicts[row].isIncluded = m_list->item(row)->checkState() == Qt::Checked;
    }
    return answer;
}

// A picture with what is known of it.
class DuplicatesSheet::Card : public QWidget
{
public:
    Card(QWidget *parent, ZQThumbnailLoader &pictures)
        : QWidget(parent), m_pictures(pictures), m_name(new QLabel(this)), m_details(new QLabel(this))
    {
        setObjectName(QStringLiteral("Card"));
        setAttribute(Qt::WA_StyledBackground);
        m_name->setObjectName(QStringLiteral("Strong"));
        m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        m_details->setObjectName(QStringLiteral("SmallMuted"));
        m_details->setWordWrap(true);
        m_details->setAlignment(Qt::AlignTop);
        m_details->setMinimumHeight(56);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(12, 12, 12, 12);
        layout->setSpacing(1);
        layout->addSpacing(pictureHeight + 10);
        layout->addWidget(m_name);
        layout->addWidget(m_details);
    }
    void show(const QString &name, const QString &details, const QString &picture)
    {
        m_name->setText(zqShortened(name));
        m_details->setText(details);
        m_picture = {picture, 0, true};
        update();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QWidget::paintEvent(event);
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const QRect box(12, 12, width() - 24, pictureHeight);
        const QImage picture = m_pictures.image(m_picture, int(box.width() * devicePixelRatioF()));
        if (!picture.isNull()) {
            const QSize size = picture.size().scaled(box.size() - QSize(20, 20), Qt::KeepAspectRatio);
            painter.drawImage(QRect(box.center() - QPoint(size.width() / 2, size.height() / 2), size), picture);
        }
    }

private:
    static constexpr int pictureHeight = 140;
    ZQThumbnailLoader &m_pictures;
    QLabel *m_name;
    QLabel *m_details;
    ZQThumbnailRequest m_picture;
};

DuplicatesSheet::DuplicatesSheet(QWidget *window, const QList<DuplicatePair> &pairs, bool archivesFollow)
    : Sheet(window, zqLocalized("Would you like to import the following duplicate image?")), m_pairs(pairs),
      m_archivesFollow(archivesFollow), m_pictures(new ZQThumbnailLoader(pictureBytes, this)),
      m_existing(new Card(this, *m_pictures)), m_new(new Card(this, *m_pictures)), m_options(new QButtonGroup(this)),
      m_applyToAll(new QCheckBox(this))
{
    setWidth(620);
    m_pictures->setDecoder(&ItemPictures::pictureFor);
    for (Card *card : {m_existing, m_new}) {
        connect(m_pictures, &ZQThumbnailLoader::loaded, card, qOverload<>(&QWidget::update));
    }
    auto *cards = new QHBoxLayout;
    cards->setSpacing(14);
    cards->addWidget(m_existing, 1);
    cards->addWidget(m_new, 1);
    content()->addLayout(cards);
    struct Option
    {
        DuplicateChoice choice;
        const char *title;
        const char *meaning;
    };
    constexpr Option options[] = {
        {DuplicateChoice::Discard, zqKey("Discard the new copy"), zqKey("The existing item stays where it is.")},
        {DuplicateChoice::Relink, zqKey("Use the existing item here"),
         zqKey("It is added where the import goes; the new copy is discarded.")},
        {DuplicateChoice::KeepBoth, zqKey("Import anyway"), zqKey("The library then holds both.")},
    };
    for (const Option &option : options) {
        auto *button = new QRadioButton(zqLocalized(option.title), this);
        button->setAccessibleDescription(zqLocalized(option.meaning));
        auto *meaning = new QLabel(zqLocalized(option.meaning), this);
        meaning->setObjectName(QStringLiteral("SmallMuted"));
        meaning->setIndent(26);
        m_options->addButton(button, int(option.choice));
        content()->addSpacing(10);
        content()->addWidget(button);
        content()->addWidget(meaning);
    }
    auto *note = new QLabel(zqLocalized("Cancel takes back everything this import has brought."), this);
    note->setObjectName(QStringLiteral("SmallMuted"));
    content()->addSpacing(14);
    content()->addWidget(note);
    // What is to be in a project is wanted there, also where the library has it already.
    const bool goesIntoProject = !pairs.isEmpty() && pairs.first().goesIntoProject;
    m_options->button(int(goesIntoProject ? DuplicateChoice::Relink : DuplicateChoice::Discard))->setChecked(true);
    footer()->insertWidget(0, m_applyToAll);
    addButton(zqLocalized("Cancel"), cancelCode, false);
    addButton(zqLocalized("Next"), acceptCode, true);
    showPair();
}

void DuplicatesSheet::showPair()
{
    const DuplicatePair &pair = m_pairs[m_answers.choices.size()];
    const QLocale locale;
    QString facts = locale.formattedDataSize(pair.bytes, 1, QLocale::DataSizeSIFormat);
    if (pair.pixelWidth > 0) {
        facts = QStringLiteral("%1 × %2 · ").arg(pair.pixelWidth).arg(pair.pixelHeight) + facts;
    }
    QString since =
        zqFormat(zqLocalized("In your library since %@"),
                 {locale.toString(pair.existingImportDate.toLocalTime().date(), QStringLiteral("d MMM yyyy"))});
    if (!pair.existingPlaces.isEmpty()) {
        since += QStringLiteral(" · ") + zqForLabel(pair.existingPlaces.join(QStringLiteral(", ")), zqLongestQuotation);
    }
    m_existing->show(withExtension(pair.existingTitle, pair.existingPath), since + u'\n' + facts,
                     pair.existingThumbPath);
    const QString folder = pair.newAddress.isEmpty() ? QFileInfo(pair.newPath).absolutePath() : pair.newAddress;
    const QString from = pair.newPath.isEmpty()
                             ? zqLocalized("New")
                             : zqFormat(zqLocalized("New, from %@"), {zqForLabel(folder, zqLongestQuotation)});
    m_new->show(withExtension(pair.newTitle, pair.newPath), from + u'\n' + facts,
                pair.newThumbPath.isEmpty() ? pair.newPath : pair.newThumbPath);
    const int left = int(m_pairs.size() - m_answers.choices.size());
    m_applyToAll->setText(m_archivesFollow ? zqLocalized("Apply to all duplicates of this import")
                          : left == int(m_pairs.size())
                              ? zqFormat(zqLocalized("Apply to all %d duplicates"), {left})
                              : zqFormat(zqLocalized("Apply to the remaining %d duplicates"), {left}));
    m_applyToAll->setToolTip(zqLocalized("A switches this; 1, 2 and 3 choose."));
    m_applyToAll->setVisible(left > 1 || m_archivesFollow);
}

void DuplicatesSheet::done(int code)
{
    if (code == acceptCode) {
        const auto choice = DuplicateChoice(m_options->checkedId());
        do {
            m_answers.choices.append(choice);
        } while (m_applyToAll->isChecked() && m_answers.choices.size() < m_pairs.size());
        if (m_answers.choices.size() < m_pairs.size()) {
            showPair();
            return;
        }
        if (m_applyToAll->isChecked() && m_archivesFollow) {
            m_answers.forTheRest = choice;
        }
    }
    Sheet::done(code);
}

void DuplicatesSheet::keyPressEvent(QKeyEvent *event)
{
    const int number = event->key() - Qt::Key_0;
    if (number >= int(DuplicateChoice::Discard) && number <= int(DuplicateChoice::KeepBoth)) {
        m_options->button(number)->setChecked(true);
        m_options->button(number)->setFocus();
        return;
    }
    if (event->key() == Qt::Key_A && m_applyToAll->isVisible()) {
        m_applyToAll->toggle();
        return;
    }
    Sheet::keyPressEvent(event);
}

DuplicatesSheet::Answer DuplicatesSheet::answer(int code) const
{
    return code == acceptCode ? Answer(m_answers) : std::nullopt;
}

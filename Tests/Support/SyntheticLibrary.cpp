#include "Tests/Support/SyntheticLibrary.h"

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Models/DataModel/ZQLibraryEPS.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQLibraryPDF.h"
#include "Models/DataModel/ZQLibraryQuickLookImage.h"
#include "Models/DataModel/ZQLibrarySVG.h"
#include "Models/DataModel/ZQLibrarySketch.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarSeed.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <cmath>
#include <cstdio>
#include <random>

namespace {

constexpr int itemsOfSave = 5000;
constexpr int projectsOfFolder = 25;

const char *const words[] = {
    "logo",    "icon",      "button",  "header",    "banner",  "Screenshot", "poster",   "sketch",  "texture",
    "pattern", "mountain",  "harbour", "portrait",  "forest",  "Skyline",    "interior", "façade",  "café",
    "Straße",  "Übersicht", "señal",   "naïve",     "Zürich",  "crème",      "логотип",  "обложка", "город",
    "εικόνα",  "λίμνη",     "ロゴ",    "東京の夜",  "桜",      "标志",       "山水",     "아이콘",  "바다",
    "شعار",    "צבעים",     "प्रतीक",   "wireframe", "invoice", "brochure",   "letter",   "card",    "packaging",
    "sign",    "mock up",   "draft",   "final",     "export"};

struct Kind
{
    const char *extension;
    int share; // of a hundred
    ZQRef<ZQLibraryBaseItem> (*insert)(ZQManagedObjectContext &);
};

template <class T>
ZQRef<ZQLibraryBaseItem> inserted(ZQManagedObjectContext &context)
{
    return context.insertNewObject<T>();
}

constexpr Kind kinds[] = {
    {"png", 38, inserted<ZQLibraryImage>},
    {"jpg", 34, inserted<ZQLibraryImage>},
    {"svg", 8, inserted<ZQLibrarySVG>},
    {"pdf", 6, inserted<ZQLibraryPDF>},
    {"psd", 5, inserted<ZQLibraryImage>},
    {"gif", 3, inserted<ZQLibraryImage>},
    {"sketch", 3, inserted<ZQLibrarySketch>},
    {"ai", 2, inserted<ZQLibraryEPS>},
    {"key", 1, inserted<ZQLibraryQuickLookImage>},
};

class Maker
{
public:
    Maker(const SyntheticLibrary &library, ZQManagedObjectContext &context) : m_library(library), m_context(context) {}

    bool make(ZQError *error)
    {
        if (!zqSeedFixedSidebar(m_context, error) || !m_context.save(error)) {
            return false;
        }
        addSidebar();
        if (!save(error)) {
            return false;
        }
        for (qint64 number = 0; number < m_library.items; ++number) {
            addItem(number);
            if ((number + 1) % itemsOfSave == 0 && !save(error)) {
                return false;
            }
        }
        return save(error);
    }

private:
    bool save(ZQError *error)
    {
        const bool isSaved = m_context.save(error);
        // What they lead to is not needed, and would be looked through again and again.
        for (const auto *tags : {&m_tags, &m_colors, &m_sizes}) {
            for (const auto &tag : *tags) {
                m_context.refreshObject(tag.get(), false);
            }
        }
        for (const auto &project : std::as_const(m_projects)) {
            m_context.refreshObject(project.get(), false);
        }
        for (const auto &folder : std::as_const(m_folders)) {
            m_context.refreshObject(folder.get(), false);
        }
        return isSaved;
    }
    int upTo(int count) { return int(m_random() % unsigned(count)); }
    bool happens(int percent) { return upTo(100) < percent; }
    // Small numbers much more often than large ones.
    int rare(int count)
    {
        const double part = std::uniform_real_distribution<double>(0, 1)(m_random);
        return std::min(count - 1, int(std::pow(double(count), part)) - 1);
    }
    QString word() { return QString::fromUtf8(words[upTo(int(std::size(words)))]); }
    QString title(qint64 number)
    {
        const int form = upTo(4);
        if (form == 0) {
            return QStringLiteral("Screenshot %1").arg(number);
        }
        const QString pair = word() + u' ' + word();
        return form == 1 ? pair : QStringLiteral("%1 %2").arg(pair).arg(upTo(form == 2 ? 100 : 100000));
    }
    QString digits(int count)
    {
        QString text;
        while (text.size() < count) {
            text += QStringLiteral("%1").arg(qulonglong(m_random()), 16, 16, QLatin1Char('0'));
        }
        return text.left(count);
    }
    QDateTime date()
    {
        constexpr qint64 span = qint64(10) * 365 * 86400 * 1000;
        return QDateTime::fromMSecsSinceEpoch(1420070400000 + qint64(m_random() % quint64(span)), Qt::UTC);
    }

    template <class T>
    ZQRef<T> add(const QString &name, ZQSidebarBaseItem *father, int order)
    {
        const auto item = m_context.insertNewObject<T>();
        item->setTitle(name);
        item->setFather(father);
        item->setOrder(order);
        return item;
    }
    void addSidebar();
    void addItem(qint64 number);
    void addTags(ZQLibraryBaseItem &item, qint64 number);
    void addMemberships(ZQLibraryBaseItem *item, qint64 number);
    void addTo(ZQLibraryBaseItem *item, qsizetype project);

    const SyntheticLibrary &m_library;
    ZQManagedObjectContext &m_context;
    std::mt19937_64 m_random{7};
    QList<ZQRef<ZQSidebarProject>> m_projects; // the large one first
    QList<qint32> m_members;
    QList<ZQRef<ZQSidebarTag>> m_tags; // the large one first
    QList<ZQRef<ZQSidebarTag>> m_colors;
    QList<ZQRef<ZQSidebarTag>> m_sizes;
    QList<ZQRef<ZQSidebarWatchedFolder>> m_folders;
};

void Maker::addSidebar()
{
    const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(m_context);
    m_projects.append(add<ZQSidebarProject>(SyntheticLibrary::largeProject(), projects.get(), 1));
    const auto large = add<ZQSidebarFolder>(SyntheticLibrary::largeFolder(), projects.get(), 2);
    ZQRef<ZQSidebarFolder> folder;
    for (int i = 0; i < m_library.projects(); ++i) {
        if (i % projectsOfFolder == 0) {
            // Every other one lies in the one before.
            ZQSidebarBaseItem *father = folder && (i / projectsOfFolder) % 2 ? folder.get() : large.get();
            folder = add<ZQSidebarFolder>(word() + QStringLiteral(" %1").arg(i), father, 100 + i);
        }
        m_projects.append(add<ZQSidebarProject>(word() + u' ' + QString::number(i), folder.get(), i));
    }
    m_members = QList<qint32>(m_projects.size(), 0);
    const auto label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(m_context);
    for (int i = 0; i < m_library.tags(); ++i) {
        m_tags.append(
            add<ZQSidebarTag>(i ? word() + u' ' + QString::number(i) : SyntheticLibrary::largeTag(), label.get(), i));
        m_tags.last()->setIs_Tag(true);
    }
    for (int color = 1000; color <= 1009; ++color) {
        m_colors.append(ZQSidebarTag::tagForColor(color, m_context));
    }
    for (int size = 2001; size <= 2005; ++size) {
        m_sizes.append(ZQSidebarTag::tagForSize(size, m_context));
    }
    const auto live = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(m_context);
    for (const char *name : {"Downloads", "Desktop"}) {
        m_folders.append(add<ZQSidebarWatchedFolder>(QLatin1StringView(name), live.get(), int(m_folders.size())));
    }
}

void Maker::addTo(ZQLibraryBaseItem *item, qsizetype project)
{
    const auto membership = m_context.insertNewObject<ZQProjectItem>();
    membership->setItem(item);
    membership->setProject(m_projects[project].get());
    membership->setOrder(m_members[project]++);
}

void Maker::addMemberships(ZQLibraryBaseItem *item, qint64 number)
{
    if (number % 10 == 0) {
        addTo(item, 0);
    }
    if (happens(80)) {
        addTo(item, 1 + upTo(int(m_projects.size()) - 1));
    }
}

void Maker::addTags(ZQLibraryBaseItem &item, qint64 number)
{
    QSet<ZQSidebarTag *> tags;
    if (number % 10 == 1) {
        tags.insert(m_tags.first().get());
    }
    for (int count = rare(6); count > 0; --count) {
        tags.insert(m_tags[1 + rare(int(m_tags.size()) - 1)].get());
    }
    if (item.mainColor()) {
        tags.insert(m_colors[item.mainColor() - 1000].get());
    }
    const qint32 edge = std::max(item.pixelWidth(), item.pixelHeight());
    const bool isVector = zqCast<ZQLibrarySVG>(ZQRef<ZQLibraryBaseItem>(&item)) != nullptr;
    tags.insert(m_sizes[isVector ? 4 : (edge <= 32 ? 0 : (edge <= 128 ? 1 : (edge <= 512 ? 2 : 3)))].get());
    for (ZQSidebarTag *tag : std::as_const(tags)) {
        item.addTagsObject(tag);
    }
}

void Maker::addItem(qint64 number)
{
    int share = upTo(100);
    const Kind *kind = kinds;
    while (share >= kind->share) {
        share -= kind++->share;
    }
    const auto item = kind->insert(m_context);
    const QString extension = QLatin1StringView(kind->extension);
    item->setTitle(title(number));
    item->setExtension(extension);
    item->setOriginalExtension(extension);
    item->setBundleID(digits(32).toUpper());
    item->setSHA1(number > 100 && happens(1) ? QStringLiteral("%1").arg(number / 50, 40, 16, QLatin1Char('0'))
                                             : digits(40));
    item->setNotes(happens(15) ? word() + u' ' + word() + QStringLiteral(", ") + word() : QString());
    item->setMainColor(happens(95) ? 1000 + upTo(10) : 0);
    item->setPixelWidth(happens(10) ? 16 << upTo(3) : 100 + upTo(5000));
    item->setPixelHeight(happens(10) ? item->pixelWidth() : 100 + upTo(4000));
    item->setPixelTotal(qint64(item->pixelWidth()) * item->pixelHeight());
    item->setRating(happens(35) ? qint16(1 + upTo(5)) : qint16(0));
    item->setModification_date(date());
    item->setCreation_date(item->modification_date().addSecs(-upTo(1000000)));
    item->setImport_date(item->modification_date().addSecs(upTo(1000000)));
    item->setSort_date(item->import_date());
    item->setColor_model(QStringLiteral("RGB"));
    item->setThumbName(item->title() + QStringLiteral("_thumb.jpg"));
    item->setItemURLData(QByteArray(240, char(number)));
    item->setActive(number % 1000 != 999);
    if (happens(3)) {
        item->setManaged(false);
        item->setWatchingFolder(m_folders[upTo(int(m_folders.size()))].get());
    }
    addTags(*item, number);
    addMemberships(item.get(), number);
}

bool report(const ZQError &error)
{
    std::fprintf(stderr, "%s\n", qPrintable(error.localizedDescription()));
    return false;
}

} // namespace

bool SyntheticLibrary::make(const QString &path) const
{
    ZQError error;
    const auto coordinator = ZQPersistentStoreCoordinator::open(zqCurrentModel(), path, {}, &error);
    if (!coordinator) {
        return report(error);
    }
    ZQManagedObjectContext context(coordinator);
    ZQSQLiteConnection *connection = ZQObjectAccess::connection(context);
    // A library that is lost with the power is made again.
    if (!connection || !connection->execute(QStringLiteral("PRAGMA synchronous=OFF; PRAGMA cache_size=-262144"))) {
        return report(connection ? connection->error() : error);
    }
    return Maker(*this, context).make(&error) || report(error);
}

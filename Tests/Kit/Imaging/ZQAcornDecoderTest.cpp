#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Tests/Kit/Imaging/ImagingSupport.h"
#include "Tools/samples/SampleFormats.h"
#include "Tools/samples/SampleScenes.h"

#include <QFile>
#include <QtEndian>

#include <sqlite3.h>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class AcornTest : public ImagingTest
{
protected:
    QString document() const { return path(QStringLiteral("document.acorn")); }

    // A database that these statements make.
    void make(const QByteArray &statements)
    {
        QFile::remove(document());
        sqlite3 *database = nullptr;
        ASSERT_EQ(sqlite3_open(QFile::encodeName(document()).constData(), &database), SQLITE_OK);
        char *message = nullptr;
        EXPECT_EQ(sqlite3_exec(database, statements.constData(), nullptr, nullptr, &message), SQLITE_OK) << message;
        sqlite3_free(message);
        sqlite3_close(database);
    }

    QByteArray picture()
    {
        const QString file = path(QStringLiteral("composite.png"));
        EXPECT_TRUE(SampleFormats::writePNG(SampleScenes::asymmetricScene({300, 200}), file));
        return contentOf(file);
    }

    // One message, that names the document, whichever way it is asked for.
    void expectRefusal(ZQImagingErrorCode code)
    {
        ZQError error;
        EXPECT_TRUE(ZQImageSource::bitmapOfFile(document(), &error).isNull());
        EXPECT_EQ(error.code, int(code)) << qPrintable(error.localizedDescription());
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("\"document.acorn\"")))
            << qPrintable(error.localizedDescription());
        EXPECT_FALSE(ZQImageSource::propertiesOfFile(document()));
        EXPECT_TRUE(ZQImageSource::embeddedPictureOfFile(document()).isEmpty());
    }
};

// A table whose inner pages all lead to the same next page, so that 4 KB hold more rows than anybody can count.
QByteArray endlessTable(const QByteArray &database)
{
    constexpr qsizetype pageBytes = 512;
    constexpr int levels = 16;
    constexpr int cells = 40;
    constexpr int cellBytes = 5;
    QByteArray out = database;
    const QByteArray leaf = out.mid(pageBytes, pageBytes); // the table's only page, with its one row
    const auto firstNew = quint32(out.size() / pageBytes) + 1;
    for (int level = 0; level < levels; ++level) {
        QByteArray page(pageBytes, '\0');
        const quint32 next = qToBigEndian(firstNew + quint32(level));
        const qsizetype content = pageBytes - cells * cellBytes;
        page[0] = 5;
        qToBigEndian(quint16(cells), page.data() + 3);
        qToBigEndian(quint16(content), page.data() + 5);
        page.replace(8, 4, reinterpret_cast<const char *>(&next), 4);
        for (int i = 0; i < cells; ++i) {
            const qsizetype cell = content + i * cellBytes;
            qToBigEndian(quint16(cell), page.data() + 12 + 2 * i);
            page.replace(cell, 4, reinterpret_cast<const char *>(&next), 4);
            page[cell + 4] = 1;
        }
        if (level == 0) {
            out.replace(pageBytes, pageBytes, page);
        } else {
            out += page;
        }
    }
    out += leaf;
    qToBigEndian(quint32(out.size() / pageBytes), out.data() + 28);
    return out;
}

TEST_F(AcornTest, ReadsThePictureOfADocument)
{
    const QByteArray composite = picture();
    ASSERT_TRUE(SampleFormats::writeAcorn(composite, document()));
    const QByteArray before = contentOf(document());
    EXPECT_EQ(ZQImageSource::embeddedPictureOfFile(document()), composite);
    EXPECT_EQ(ZQImageSource::bitmapOfFile(document()).size(), QSize(300, 200));
    EXPECT_EQ(ZQImageSource::thumbnailOfFile(document(), 150).size(), QSize(150, 100));
    EXPECT_EQ(ZQImageSource::propertiesOfFile(document())->pixelWidth, 300);
    EXPECT_EQ(contentOf(document()), before);
    // One that keeps a log, which is not there.
    make("pragma journal_mode = wal; create table image_attributes (name text, value blob);"
         "insert into image_attributes values ('composite', x'" +
         composite.toHex() + "');");
    EXPECT_EQ(ZQImageSource::embeddedPictureOfFile(document()), composite);
}

TEST_F(AcornTest, RefusesSchemasThatAreProgramsWithOneMessage)
{
    struct Row
    {
        const char *what;
        QByteArray statements;
        ZQImagingErrorCode code;
    };
    const QByteArray value = "x'" + picture().toHex() + "'";
    const QByteArray table("create table image_attributes (name text, value blob);");
    using Code = ZQImagingErrorCode;
    for (const Row &row : {
             Row{"endless view",
                 "create view image_attributes as with recursive c(name, value) as (select 'x', 1 union all select "
                 "'x', value + 1 from c) select name, value from c;",
                 Code::UnknownFormat},
             Row{"view that makes a picture",
                 "create view image_attributes as select 'composite' as name, " + value + " as value;",
                 Code::UnknownFormat},
             Row{"huge column of a view",
                 "create view image_attributes as select 'composite' as name, zeroblob(900000000) as value;",
                 Code::UnknownFormat},
             Row{"huge generated column",
                 "create table image_attributes (name text, value as (zeroblob(900000000)));"
                 "insert into image_attributes (name) values ('composite');",
                 Code::TooMuchMemory},
             Row{"memory that a function wants",
                 "create table image_attributes (name text, value as (hex(zeroblob(200000000))));"
                 "insert into image_attributes (name) values ('composite');",
                 Code::TooMuchMemory},
             Row{"virtual table",
                 "create virtual table image_attributes using fts5(name, value);"
                 "insert into image_attributes values ('composite', " +
                     value + ");",
                 Code::UnknownFormat},
             Row{"no composite", table + "insert into image_attributes values ('other', " + value + ");",
                 Code::UnknownFormat},
             Row{"a number", table + "insert into image_attributes values ('composite', 17);", Code::UnknownFormat},
             Row{"empty", table + "insert into image_attributes values ('composite', x'');", Code::UnknownFormat},
             Row{"no table", "create table other (name text, value blob);", Code::UnknownFormat},
         }) {
        SCOPED_TRACE(row.what);
        make(row.statements);
        ZQError error;
        EXPECT_TRUE(ZQImageSource::bitmapOfFile(document(), &error).isNull());
        EXPECT_EQ(error.code, int(row.code)) << qPrintable(error.localizedDescription());
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("\"document.acorn\"")));
        EXPECT_FALSE(ZQImageSource::propertiesOfFile(document()));
    }
    // A trigger is no obstacle, and does not run.
    make(table + "insert into image_attributes values ('composite', " + value +
         "); create trigger t after insert on image_attributes begin delete from image_attributes; end;");
    EXPECT_EQ(ZQImageSource::bitmapOfFile(document()).size(), QSize(300, 200));
}

TEST_F(AcornTest, EndsTheReadingOfATableWithoutEnd)
{
    make("pragma page_size = 512; create table image_attributes (name text, value blob);"
         "insert into image_attributes values ('other', 'x');");
    ASSERT_TRUE(SampleFormats::writeBytes(endlessTable(contentOf(document())), document()));
    ZQError error;
    EXPECT_TRUE(ZQImageSource::bitmapOfFile(document(), &error).isNull());
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::TookTooLong)) << qPrintable(error.localizedDescription());
}

TEST_F(AcornTest, RefusesDamagedDocumentsAndDocumentsInDocuments)
{
    ASSERT_TRUE(SampleFormats::writeAcorn(picture(), document()));
    const QByteArray whole = contentOf(document());
    for (const qsizetype size : {qsizetype(17), qsizetype(99), qsizetype(100), qsizetype(4096), whole.size() / 2}) {
        SCOPED_TRACE(size);
        ASSERT_TRUE(SampleFormats::writeBytes(whole.left(size), document()));
        expectRefusal(ZQImagingErrorCode::Damaged);
    }
    ASSERT_TRUE(SampleFormats::writeAcorn(whole, document()));
    ZQError error;
    EXPECT_TRUE(ZQImageSource::bitmapOfFile(document(), &error).isNull());
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::Damaged));
}

} // namespace

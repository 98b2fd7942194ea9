#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// The manual: chapters that people wrote ("docs/manual/NN-name.md"), and what the program knows by
/// itself: every command with its keys, a page for each node type.
///
/// Chapters name what the program has in double brackets, so that they stay true: [[/Ossa/File/Save]] is a
/// command with the menu that it is in and the keys that it has now, [[Filter/Blur]] a node type with a
/// link to its page, [[example:Barrel]] an example project. Links between chapters are Markdown's own, to
/// "name.html".
class Manual
{
public:
    /// Whom it is for: the program opens examples when their names are clicked, a browser cannot.
    enum Reader { InProgram, InBrowser };

    struct Page
    {
        QString address; ///< "painting.html"
        QString title;
        QString group;   ///< of node types: the folder that they are in, "Noise"; else empty
        QString file;    ///< chapters: as it was written
        QString pathKey; ///< node types
    };

    /// In a folder of a manual lie pictures and examples of node types, or nothing yet.
    Manual(Reader reader, const QString &folder);

    /// In the order of reading.
    const QVector<Page> &pages() const { return m_pages; }

    /// Null for an unknown address.
    const Page *find(const QString &address) const;

    /// The page as HTML, without a frame around it; empty for an unknown address.
    QString body(const QString &address) const;

    /// The page's words, for a search.
    QString plainText(const QString &address) const;

    /// What stands in brackets in the page and is nothing that the program has.
    QStringList unknownNames(const QString &address) const;

    /// Where links to examples lead for the program: "open:" and the name, as in the folder of
    /// examples, without its ending.
    static QString exampleScheme();

    static QString firstAddress() { return QStringLiteral("index.html"); }

private:
    void addChapters();
    void addNodeTypes();
    QString chapter(const Page &page, QStringList *unknown) const;
    QString commands() const;
    QString nodeTypes() const;
    /// Without the pictures that are not there.
    QString withPictures(const QString &html) const;
    /// Markdown for what stands in brackets; empty when there is no such thing.
    QString named(const QString &name) const;

    Reader m_reader;
    QString m_folder;
    QVector<Page> m_pages;
};

#include "DocumentJournal.h"

#include "DocumentLock.h"
#include "SystemDocument.h"
#include "io/AtomicFile.h"

#include <QFileInfo>
#include <QThreadPool>

#include <cstdio>

namespace ferrule {

DocumentJournal::DocumentJournal(const QString& folder, QObject* parent)
    : QObject(parent)
    , journal_(folder) {
    timer_.setSingleShot(true);
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, &DocumentJournal::flush);
}

DocumentJournal::~DocumentJournal() {
    flush();
}

DocumentJournal::Key DocumentJournal::keyOf(const SystemDocument& document) {
    // A file opened read-only is another process's to journal: its changes here go to a new
    // file, so they are kept as a new document's.
    return {document.readOnly() ? QString() : document.path(), document.model()};
}

void DocumentJournal::keep(const SystemDocument& document, const QByteArray& image) {
    const Key key = keyOf(document);
    if (kept_ && !(*kept_ == key)) removeKept();
    if (!document.modified() && image == document.image()) {
        drop();
        return;
    }
    // The same state again (the window refreshes often) is on the disk already.
    if (kept_ == key && image == pending_.image) return;
    const SystemDocument::DiskState& disk = document.disk();
    pending_ = {key.path,
                key.model,
                int(document.format()),
                QDateTime::currentDateTime(),
                disk.size,
                disk.modified,
                disk.hash,
                image};
    kept_ = key;
    waiting_ = true;
    timer_.start();
}

void DocumentJournal::flush() {
    if (!waiting_) return;
    waiting_ = false;
    timer_.stop();
    pending_.written = QDateTime::currentDateTime();
    QString error;
    if (journal_.write(pending_, &error)) {
        // The journal survives any death of the process now, and a power cut once a worker
        // has put it on the disk: that wait would hold up the window.
        QThreadPool::globalInstance()->start(
            [file = journal_.fileFor(pending_.path, pending_.model)] {
                AtomicFile::flushToDisk(file);
            });
    } else if (!warned_) {
        // Said once: the edits themselves are not touched by this.
        warned_ = true;
        std::fprintf(stderr, "ferrule-host: warning: the recovery journal %s\n", qPrintable(error));
    }
}

void DocumentJournal::drop() {
    waiting_ = false;
    timer_.stop();
    removeKept();
}

void DocumentJournal::removeKept() {
    if (kept_) journal_.remove(kept_->path, kept_->model);
    kept_.reset();
    pending_ = {};
}

bool DocumentJournal::offerRecovery(SystemDocument& document, const Ask& ask) {
    const Key key = keyOf(document);
    // A file another running ferrule-host has unsaved changes to: the journal is its own.
    if (!key.path.isEmpty() && DocumentLock::holder(key.path) != 0) return false;
    const std::optional<JournalEntry> entry = journal_.read(key.path, key.model);
    if (!entry || entry->image.size() != document.image().size()) return false;
    SystemDocument recovered = document;
    recovered.recover(entry->image, {entry->diskSize, entry->diskModified, entry->diskHash});
    const QString name = key.path.isEmpty()
                             ? QStringLiteral("the new GT-%1 system data").arg(key.model)
                             : QFileInfo(key.path).fileName();
    QString question =
        QStringLiteral("Ferrule closed before your changes to %1 were saved (%2). Recover them?")
            .arg(name, entry->written.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    if (const QString changed = recovered.changedOnDisk(); !changed.isEmpty())
        question += QStringLiteral("\n\n") + changed + QLatin1Char('.');
    if (!ask(question)) {
        journal_.remove(key.path, key.model);
        return false;
    }
    document = std::move(recovered);
    kept_ = key;
    return true;
}

} // namespace ferrule

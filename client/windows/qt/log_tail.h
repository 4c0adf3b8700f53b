// client/windows/qt/log_tail.h: what is new in a log.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace pavex {

class LogTail {
public:
    explicit LogTail(QString path) : path_(std::move(path)) {}

    // The whole lines that were written since the last call; the first one gives the last lines there are.
    // A log that was begun anew, in another file or in the same one, is read from its beginning, after what the old
    // one still had where it was put aside.  One that cannot be read has nothing new.
    QString ReadNew();

private:
    bool WasPutAside() const;
    bool HasBegunAnew();
    QByteArray ReadRest();
    QByteArray ReadLines();

    QString path_;
    QFile file_;              // open since it was first met
    qint64 read_ = -1;        // bytes; -1: not read yet
    bool skipsPart_ = false;  // what comes up to the next line end is the end of a line that was not begun with
    QByteArray lastRead_;     // the last bytes before read_
};

}  // namespace pavex

// client/windows/qt/log_tail.h: what is new in a log.
#pragma once

#include <QString>

namespace pavex {

class LogTail {
public:
    explicit LogTail(QString path) : path_(std::move(path)) {}

    // The whole lines that were written since the last call; the first one gives the last lines there are.
    // A log that became shorter is read from its beginning; one that cannot be read has nothing new.
    QString ReadNew();

private:
    QString path_;
    qint64 read_ = -1;  // bytes; -1: not read yet
};

}  // namespace pavex

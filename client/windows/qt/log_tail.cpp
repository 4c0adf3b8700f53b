// client/windows/qt/log_tail.cpp: what is new in a log.
#include "client/windows/qt/log_tail.h"

#include <QFile>
#include <algorithm>

namespace pavex {

namespace {

// Of a log that is long already.
constexpr qint64 kMostBytesAtFirst = qint64{64} * 1024;

}  // namespace

QString LogTail::ReadNew()
{
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const bool skipsPart = read_ < 0 && file.size() > kMostBytesAtFirst;
    if (read_ < 0)
        read_ = std::max<qint64>(file.size() - kMostBytesAtFirst, 0);
    if (file.size() < read_)
        read_ = 0;
    if (!file.seek(read_))
        return {};
    QByteArray bytes = file.readAll();
    bytes.truncate(bytes.lastIndexOf('\n') + 1);  // a line is taken when it is whole
    read_ += bytes.size();
    if (skipsPart)
        bytes.remove(0, bytes.indexOf('\n') + 1);
    return QString::fromUtf8(bytes);
}

}  // namespace pavex

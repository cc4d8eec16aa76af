#include "driver/Once_Read_Index.h"

Once_Read_Key::Once_Read_Key(const RW_VAR& read)
    : varType(read.varType),
      varId(read.varId),
      station(read.station),
      dataType(read.dataType),
      address(read.address),
      length(read.length),
      areaId(read.areaId) {}

bool operator==(const Once_Read_Key& a, const Once_Read_Key& b) {
    return a.address == b.address && a.length == b.length && a.varId == b.varId && a.varType == b.varType &&
           a.station == b.station && a.dataType == b.dataType && a.areaId == b.areaId;
}

// Nearly all reads differ in address or identifier. Both rise in even steps; multiplying by a large odd number spreads
// them over all buckets.
uint qHash(const Once_Read_Key& key) {
    const quint32 words[] = {static_cast<quint32>(key.varId), static_cast<quint32>(key.length),
                             static_cast<quint32>(key.station), static_cast<quint32>(key.varType),
                             static_cast<quint32>(key.dataType)};
    quint32 mixed = key.address;
    for (quint32 word : words)
        mixed = (mixed ^ mixed >> 15) * 0x9E3779B1u + word;
    return mixed ^ mixed >> 15;
}

bool Once_Read_Index::holds(const QList<RW_VAR>& queue, const RW_VAR& read) {
    if (!describes(queue)) countAnew(queue);
    return counts_.contains(Once_Read_Key(read));
}

void Once_Read_Index::append(QList<RW_VAR>& queue, const RW_VAR& read) {
    if (!describes(queue)) countAnew(queue);
    described_ = QList<RW_VAR>();  // while the copy shares the entries, the change would copy them all
    ++counts_[Once_Read_Key(read)];
    queue.append(read);
    described_ = queue;
}

void Once_Read_Index::removeAt(QList<RW_VAR>& queue, int place) {
    const bool described = describes(queue);
    described_ = QList<RW_VAR>();
    if (described)
        forgetOne(queue.at(place));
    else
        counts_.clear();
    queue.removeAt(place);
    if (described) described_ = queue;
}

void Once_Read_Index::countAnew(const QList<RW_VAR>& queue) {
    counts_.clear();
    for (int i = 0; i < queue.size(); ++i)
        ++counts_[Once_Read_Key(queue.at(i))];
    described_ = queue;
}

void Once_Read_Index::forgetOne(const RW_VAR& read) {
    const QHash<Once_Read_Key, int>::iterator counted = counts_.find(Once_Read_Key(read));
    if (--*counted == 0) counts_.erase(counted);
}

// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryTables.h"

#include "RepositoryAnswer.h"

namespace OrvHost {

namespace {

using Rows = RepositoryRows;

OrvReturnT getEndMoc(Handle end, Handle* moc) {
    return answerHandle<&Rows::end, &Rows::EndRow::moc>(end, moc);
}

OrvReturnT getEndAttribute(Handle end, Handle* attribute) {
    return answerHandle<&Rows::end, &Rows::EndRow::attribute>(end, attribute);
}

OrvReturnT getEndGeneralProperties(Handle end, Handle* properties) {
    return answerProperties<&Rows::end>(end, properties);
}

OrvReturnT getEndStringProperty(Handle end, int identifier, const char** text) {
    return answer<&Rows::end>(end, text, [identifier](const auto& row, const char*& result) {
        switch (identifier) {
        case VekOamSpiMrEndName_4:
            result = row.name;
            return OrvOk;
        case VekOamSpiMrEndRole_4:
            result = row.role;
            return OrvOk;
        default:
            return OrvInvalidArgument;
        }
    });
}

OrvReturnT getEndBoolProperty(Handle end, int identifier, bool* flag) {
    return answer<&Rows::end>(end, flag, [identifier](const auto& row, bool& result) {
        if (identifier != VekOamSpiMrEndKeepAtDelete_4) {
            return OrvInvalidArgument;
        }
        result = row.keepAtDelete;
        return OrvOk;
    });
}

OrvReturnT getEndIntProperty(Handle end, int identifier, long long* number) {
    return answer<&Rows::end>(end, number, [identifier](const auto& row, long long& result) {
        return answerBound(row.cardinality, identifier, result);
    });
}

OrvReturnT getEnd(Handle association, std::uint32_t which, Handle* end) {
    return answer<&Rows::biDir>(association, end, [=](const auto&, Handle& result) {
        result = encode({HandleKind::BiDirEnd, 2 * decode(association).first + which});
        return OrvOk;
    });
}

OrvReturnT getFirstEnd(Handle association, Handle* end) {
    return getEnd(association, 0, end);
}

OrvReturnT getSecondEnd(Handle association, Handle* end) {
    return getEnd(association, 1, end);
}

/// The class says whose list is walked: it must have a part in the current association.
OrvReturnT getNextBiDirAssociation(Handle current, Handle moc, Handle* next) {
    const auto step = [moc](const auto& row, Handle& result) {
        const std::size_t side = moc == row.ends[0] ? 0 : 1;
        if (moc != row.ends[side]) {
            return OrvInvalidArgument;
        }
        const Handle after = row.next[side];
        if (after == 0) {
            return OrvNotExist;
        }
        result = after;
        return OrvOk;
    };
    return answer<&Rows::moc>(moc, &moc, [&](const auto&, const Handle&) {
        return answer<&Rows::biDir>(current, next, step);
    });
}

OrvReturnT getUniDirEnd(Handle association, Handle* end) {
    return answer<&Rows::uniDir>(association, end, [=](const auto&, Handle& result) {
        result = encode({HandleKind::UniDirEnd, decode(association).first});
        return OrvOk;
    });
}

OrvReturnT getNextUniDirAssociation(Handle association, Handle* next) {
    return answerHandle<&Rows::uniDir, &Rows::UniDirRow::next>(association, next);
}

}

const VekOamSpiMrAssociationEnd_4 kAssociationEnd{
    &getEndMoc,          &getEndAttribute,  &getEndGeneralProperties, &getEndStringProperty,
    &getEndBoolProperty, &getEndIntProperty};

const VekOamSpiMrBiDirAssociation_4 kBiDirAssociation{nullptr, nullptr, &getFirstEnd, &getSecondEnd,
                                                      &getNextBiDirAssociation};

const VekOamSpiMrUniDirAssociation_4 kUniDirAssociation{nullptr, nullptr, &getUniDirEnd,
                                                        &getNextUniDirAssociation};

}

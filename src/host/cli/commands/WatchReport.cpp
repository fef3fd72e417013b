// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WatchReport.h"

#include "base/Counted.h"
#include "cli/output/DifferenceReport.h"
#include "cli/session/Session.h"

namespace OrvHost {

namespace {

void print(Session& session, const WatchedCommit& commit) {
    if (session.wantsJson()) {
        session.print({{"command", "watch"},
                       {"commit", commit.number},
                       {"author", commit.author},
                       {"differences", toJson(commit.objects)}});
        return;
    }
    session.out() << "commit " << commit.number
                  << (commit.author.empty() ? "" : " by " + commit.author) << ":\n"
                  << toText(commit.objects, session.colours());
}

}

void reportWatched(Session& session) {
    const WatchList::News news = session.watches().take();
    if (news.lost > 0 && session.wantsJson()) {
        session.print({{"command", "watch"}, {"lost", news.lost}});
    } else if (news.lost > 0) {
        session.out() << counted(news.lost, "commit") << " before these, too many to keep\n";
    }
    for (const WatchedCommit& commit : news.commits) {
        print(session, commit);
    }
    session.out().flush();
}

}

// The showing part of a long child list.
#pragma once

namespace tarvix::atspi {

class TreeFetch;

// For toolkits whose pages list thousands of children in one parent: asks for a few of them by index, and where their
// boxes run down the page in order, visits only the stretch that can show. Where they don't, all are visited.
class LongList {
public:
    static void fetch(TreeFetch& fetch, int index);
};

}  // namespace tarvix::atspi

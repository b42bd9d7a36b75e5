#include "composition/model/double_linked_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "composition/model/composition.h"
#include "composition/parsed_text.h"

namespace {

using List = CDoubleLinkedList<CCompoChild>;

TEST(DoubleLinkedList, EmptyListIsTwoSentinels) {
    List list;
    EXPECT_EQ(list.head.next, &list.tail);
    EXPECT_EQ(list.tail.prev, &list.head);
    EXPECT_EQ(list.head.prev, nullptr);
    EXPECT_EQ(list.tail.next, nullptr);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.First(), nullptr);
    EXPECT_EQ(list.RemoveFirst(), nullptr);
}

TEST(DoubleLinkedList, AddAtTailKeepsOrderAndLinksBothWays) {
    CCompoChild a;
    CCompoChild b;
    List list;
    list.AddAtTail(&a);
    list.AddAtTail(&b);
    EXPECT_EQ(nodes_of(list), (std::vector<CCompoChild*>{&a, &b}));
    EXPECT_EQ(list.count, 2);
    EXPECT_EQ(a.prev, &list.head);
    EXPECT_EQ(b.prev, &a);
    EXPECT_EQ(b.next, &list.tail);
    EXPECT_EQ(list.tail.prev, &b);
}

TEST(DoubleLinkedList, AddAtHeadReversesAndLeavesTheStaleLink) {
    CCompoChild a;
    CCompoChild b;
    List list;
    list.AddAtHead(&a);
    EXPECT_EQ(list.tail.prev, &list.head) << "of the end of an empty list";
    list.AddAtHead(&b);
    EXPECT_EQ(nodes_of(list), (std::vector<CCompoChild*>{&b, &a}));
    EXPECT_EQ(list.count, 2);
    EXPECT_EQ(b.prev, &list.head);
    EXPECT_EQ(a.prev, &list.head) << "of the node that was first";
}

TEST(DoubleLinkedList, NullNodesAreIgnored) {
    List list;
    list.AddAtTail(nullptr);
    list.AddAtHead(nullptr);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.First(), nullptr);
}

TEST(DoubleLinkedList, RemoveFirstEmptiesFromTheFront) {
    CCompoChild a;
    CCompoChild b;
    List list;
    list.AddAtHead(&a);
    list.AddAtHead(&b);
    EXPECT_EQ(list.RemoveFirst(), &b);
    EXPECT_EQ(b.next, nullptr);
    EXPECT_EQ(b.prev, nullptr);
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.First(), &a);
    EXPECT_EQ(list.RemoveFirst(), &a);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.head.next, &list.tail);
}

TEST(DoubleLinkedList, DestructorUnlinksWithoutDeleting) {
    CCompoChild a;
    CCompoChild b;
    {
        List list;
        list.AddAtTail(&a);
        list.AddAtTail(&b);
    }
    EXPECT_EQ(a.next, nullptr);
    EXPECT_EQ(b.next, nullptr);
    EXPECT_EQ(a.prev, nullptr);
    EXPECT_EQ(b.prev, nullptr);
}

}  // namespace

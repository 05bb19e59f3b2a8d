#include <gmock/gmock.h>

#include "qt/updates/AppcastReader.h"

namespace tarvix {
namespace {

QByteArray feed(const QByteArray& items) {
    return R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle" xmlns:other="urn:other">
<channel><title>Tarvix</title><link>https://example.org/</link>)" +
           items + "</channel></rss>";
}

TEST(AppcastReader, ReadsAnItem) {
    const auto appcast = readAppcast(feed(R"(<item>
        <title>Tarvix 2.0</title><pubDate>Sat, 21 Nov 2026 12:00:00 +0000</pubDate>
        <s:version> 2.0 </s:version><s:shortVersionString>2.0 (Autumn)</s:shortVersionString>
        <s:minimumSystemVersion>12</s:minimumSystemVersion><s:channel>beta</s:channel>
        <description><![CDATA[<p>New & better</p>]]></description>
        <enclosure url="https://example.org/a.deb?x=1&amp;y=2" length="123" type="application/x-deb"
                   s:os="linux" s:edSignature="c2lnbmVk"/></item>)"));
    ASSERT_TRUE(appcast);
    const AppcastItem expected{.version = "2.0",
                               .displayVersion = "2.0 (Autumn)",
                               .minimumSystemVersion = "12",
                               .channel = "beta",
                               .notes = "<p>New & better</p>",
                               .files = {{.address = "https://example.org/a.deb?x=1&y=2",
                                          .type = "application/x-deb",
                                          .signature = "c2lnbmVk",
                                          .system = "linux",
                                          .length = 123}}};
    EXPECT_THAT(*appcast, testing::ElementsAre(expected));
}

TEST(AppcastReader, ReadsTheVersionsOfAnEnclosure) {
    const auto appcast = readAppcast(feed(R"(<item><enclosure s:version="2.0" s:shortVersionString="Two"/></item>
        <item><s:version>3.0</s:version><enclosure s:version="2.0"/></item>
        <item><s:shortVersionString>4.0</s:shortVersionString></item>)"));
    ASSERT_TRUE(appcast);
    ASSERT_EQ(appcast->size(), 3U);
    EXPECT_EQ((*appcast)[0].version, "2.0");
    EXPECT_EQ((*appcast)[0].displayVersion, "Two");
    EXPECT_EQ((*appcast)[1].version, "3.0");
    EXPECT_EQ((*appcast)[2].version, "4.0");
}

TEST(AppcastReader, PassesOverPatchesAndNamesOfOthers) {
    const auto appcast = readAppcast(feed(R"(<item><version>9</version><other:version>9</other:version>
        <s:deltas><enclosure url="https://example.org/patch" s:version="8"/></s:deltas>
        <other:enclosure url="https://example.org/other"/>
        <enclosure url="https://example.org/a.deb" edSignature="no" length="-1"/></item>)"));
    ASSERT_TRUE(appcast);
    ASSERT_EQ(appcast->size(), 1U);
    EXPECT_EQ(appcast->front().version, "");
    ASSERT_EQ(appcast->front().files.size(), 1U);
    EXPECT_EQ(appcast->front().files[0].address, "https://example.org/a.deb");
    EXPECT_EQ(appcast->front().files[0].signature, "");
    EXPECT_EQ(appcast->front().files[0].length, 0U);
}

TEST(AppcastReader, AChannelWithoutItemsIsAFeed) {
    const auto appcast = readAppcast(feed(""));
    ASSERT_TRUE(appcast);
    EXPECT_TRUE(appcast->empty());
}

TEST(AppcastReader, WhatIsNoFeedIsAbsent) {
    const QByteArray whole = feed("<item/>");
    for (const QByteArray& text :
         {QByteArray(), QByteArray("no XML"), QByteArray("<rss/>"), QByteArray("<html><body/></html>"),
          whole.chopped(1), whole + "<rss/>", feed("<item>&undefined;</item>"), feed("<item>"),
          feed("<item>\x01</item>"), QByteArray("\xff\xfe\x00")})
        EXPECT_FALSE(readAppcast(text)) << text.toStdString();
}

TEST(AppcastReader, ADocumentTypeIsRefused) {
    EXPECT_FALSE(readAppcast("<!DOCTYPE rss><rss><channel/></rss>"));
    EXPECT_FALSE(readAppcast(R"(<!DOCTYPE rss [<!ENTITY file SYSTEM "file:///etc/passwd">]>
        <rss><channel><item><description>&file;</description></item></channel></rss>)"));
    QByteArray laughs = "<!DOCTYPE rss [<!ENTITY l0 \"ha\">";
    for (int i = 1; i < 30; ++i) {
        const QByteArray before = "&l" + QByteArray::number(i - 1) + ";";
        laughs += "<!ENTITY l" + QByteArray::number(i) + " \"" + before.repeated(10) + "\">";
    }
    EXPECT_FALSE(readAppcast(laughs + "]><rss><channel><item><description>&l29;</description></item></channel></rss>"));
}

TEST(AppcastReader, DeepNestingIsOnlySkipped) {
    const int deep = 100000;
    const auto appcast =
        readAppcast(feed(QByteArray("<a>").repeated(deep) + QByteArray("</a>").repeated(deep) + "<item/>"));
    ASSERT_TRUE(appcast);
    EXPECT_EQ(appcast->size(), 1U);
}

}  // namespace
}  // namespace tarvix

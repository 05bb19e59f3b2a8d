#include <gtest/gtest.h>

#include <string>

#include "updates/UpdateAddress.h"

namespace tarvix {
namespace {

TEST(UpdateAddress, IsAWholeHttpsAddress) {
    for (const char* address : {"https://example.org/tarvix.deb", "HTTPS://example.org:8443/a/b.deb?x=1#y",
                                "https://127.0.0.1/", "https://[::1]:1/a.deb", "https://example.org",
                                "https://example.org/Tarvix%201.0..deb", "https://example.org/a?b=%2F.."})
        EXPECT_EQ(refuseAddress(address), std::nullopt) << address;
}

TEST(UpdateAddress, OtherSchemesAreNotSecure) {
    for (const char* address : {"http://example.org/a.deb", "ftp://example.org/a.deb", "file:///etc/passwd",
                                "data:text/xml,x", "httpsx://example.org/", "https:/example.org/", "javascript:0"})
        EXPECT_EQ(refuseAddress(address), UpdateRefusal::insecureAddress) << address;
}

TEST(UpdateAddress, IsNeitherRelativeNorAmbiguous) {
    const std::string host = "https://example.org";
    for (const std::string& address : {std::string(),
                                       std::string("tarvix.deb"),
                                       std::string("/tarvix.deb"),
                                       std::string("//example.org/a.deb"),
                                       std::string("../a.deb"),
                                       std::string("?https://a"),
                                       std::string("https://"),
                                       std::string("https:///a.deb"),
                                       std::string("https://:443/a.deb"),
                                       std::string("https://user@example.org/a.deb"),
                                       std::string("https://example.org%2f@other.org/a.deb"),
                                       host + "/../a.deb",
                                       host + "/a/./b.deb",
                                       host + "/a/..",
                                       host + "/%2e%2e/a.deb",
                                       host + "/..%2F..%2Fetc%2Fpasswd",
                                       host + "/a%5Cb",
                                       host + "/a%00.deb",
                                       host + "/a%0A.deb",
                                       host + "/a%1b.deb",
                                       host + "/a%252fb",
                                       host + "/a b.deb",
                                       host + "/a\\b.deb",
                                       host + "/a\nb.deb",
                                       host + "/\x01",
                                       host + "/é.deb",
                                       host + "/" + std::string(2048, 'a'),
                                       std::string("https://example.org/\0a", 22)})
        EXPECT_EQ(refuseAddress(address), UpdateRefusal::hostileAddress) << address;
}

TEST(UpdateRedirect, GoesToSecureAddressesAFewTimes) {
    EXPECT_EQ(refuseRedirect("https://other.org/a.deb", 1), std::nullopt);
    EXPECT_EQ(refuseRedirect("https://other.org/a.deb", kMostRedirects), std::nullopt);
    EXPECT_EQ(refuseRedirect("https://other.org/a.deb", kMostRedirects + 1), UpdateRefusal::tooManyRedirects);
    EXPECT_EQ(refuseRedirect("http://other.org/a.deb", 1), UpdateRefusal::insecureRedirect);
    EXPECT_EQ(refuseRedirect("file:///a.deb", 1), UpdateRefusal::insecureRedirect);
    EXPECT_EQ(refuseRedirect("a.deb", 1), UpdateRefusal::hostileAddress);
}

}  // namespace
}  // namespace tarvix

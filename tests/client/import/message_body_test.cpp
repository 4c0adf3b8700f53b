// tests/client/import/message_body_test.cpp: which text of a message is its body.
#include "client/import/message_body.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "client/import/message_bytes.h"

namespace pavex {
namespace {

using testing::ElementsAre;

MessageText Read(const std::string& bytes)
{
    StartMimeLibrary();
    const ObjectOwner<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()));
    const ObjectOwner<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    g_mime_parser_set_persist_stream(parser.get(), TRUE);
    const ObjectOwner<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), nullptr));
    return ReadMessageText(message.get());
}

std::string Multipart(const std::string& kind, const std::vector<std::string>& parts, const std::string& boundary = "b")
{
    std::string text = "Content-Type: multipart/" + kind + "; boundary=\"" + boundary + "\"\n\n";
    for (const std::string& part : parts)
        text += "--" + boundary + "\n" + part + "\n";
    return text + "--" + boundary + "--\n";
}

const std::string kPlain = "Content-Type: text/plain; charset=utf-8\n\nplain\n";
const std::string kHtml = "Content-Type: text/html; charset=utf-8\n\n<p>html</p>\n";
const std::string kImage = "Content-Type: image/png; name=\"dot.png\"\nContent-Transfer-Encoding: base64\n\nAAAA\n";

TEST(MessageBody, IsTheTextOfASimpleMessage)
{
    EXPECT_EQ(Read("Subject: x\n\n\n\none\n\ntwo  \n\n\n").text, "one\n\ntwo\n");
    EXPECT_EQ(Read(kHtml).text, "html\n");
    EXPECT_EQ(Read("Subject: x\n\n").text, "");
    EXPECT_EQ(Read("Subject: x\n").text, "");
}

TEST(MessageBody, PrefersPlainTextUnlessItIsEmpty)
{
    EXPECT_EQ(Read(Multipart("alternative", {kPlain, kHtml})).text, "plain\n");
    EXPECT_EQ(Read(Multipart("alternative", {kHtml, kPlain})).text, "plain\n");
    EXPECT_EQ(Read(Multipart("alternative", {"Content-Type: text/plain\n\n \n\n", kHtml})).text, "html\n");
    EXPECT_EQ(Read(Multipart("alternative", {kPlain, Multipart("related", {kHtml, kImage}, "c")})).text, "plain\n");
}

TEST(MessageBody, TakesTheRootOfRelatedParts)
{
    EXPECT_EQ(Read(Multipart("related", {kHtml, kImage})).text, "html\n");
    const std::string root = "Content-ID: <r@x>\nContent-Type: text/html\n\n<p>root</p>\n";
    EXPECT_EQ(Read(Multipart("related; start=\"<r@x>\"", {kHtml, root})).text, "root\n");
    EXPECT_THAT(Read(Multipart("related", {kHtml, kImage})).attachments, ElementsAre("dot.png"));
}

TEST(MessageBody, JoinsTextsThatAreShownInLine)
{
    EXPECT_EQ(
        Read(Multipart("mixed", {kPlain, kImage, kHtml, "Content-Type: text/calendar\n\nBEGIN:VCALENDAR\n"})).text,
        "plain\n\nhtml\n");
    const std::string attached = "Content-Type: text/plain; name=a.txt\nContent-Disposition: attachment\n\nno\n";
    const MessageText text = Read(Multipart("mixed", {kPlain, attached}));
    EXPECT_EQ(text.text, "plain\n");
    EXPECT_THAT(text.attachments, ElementsAre("a.txt"));
}

TEST(MessageBody, PutsAttachedMessagesAfterTheBody)
{
    const std::string inner =
        "From: =?utf-8?q?Zo=C3=A9?= <z@example.org>\nTo: a@example.org, b@example.org\nSubject: inner\n" +
        Multipart("mixed", {kPlain, "Content-Type: message/rfc822\n\nSubject: innermost\n\ndeep\n"}, "c");
    EXPECT_EQ(
        Read(Multipart("mixed", {"Content-Type: message/rfc822\n\n" + inner, "Content-Type: text/plain\n\nouter\n"}))
            .text,
        "outer\n\nSubject: inner\nFrom: Zoé <z@example.org>\nTo: a@example.org, b@example.org\n\nplain\n\n"
        "Subject: innermost\n\ndeep\n");
}

TEST(MessageBody, NamesAttachmentsInEveryNotation)
{
    const auto named = [](const std::string& fields) {
        return Read(Multipart("mixed", {"Content-Type: application/x\n" + fields + "\n\nAAAA\n"})).attachments;
    };
    EXPECT_THAT(named("Content-Disposition: attachment; filename=\"a b.pdf\""), ElementsAre("a b.pdf"));
    EXPECT_THAT(named("Content-Disposition: attachment; filename*=utf-8''gr%C3%BCn.pdf"), ElementsAre("grün.pdf"));
    EXPECT_THAT(named("Content-Disposition: attachment; filename*0*=utf-8''gr%C3%BC; filename*1=n.pdf"),
                ElementsAre("grün.pdf"));
    EXPECT_THAT(named("Content-Disposition: attachment; filename=\"=?iso-8859-1?q?gr=FCn=2Epdf?=\""),
                ElementsAre("grün.pdf"));
    EXPECT_THAT(named("Content-Disposition: attachment; filename=\"C:\\\\Users\\\\x\\\\a.pdf\""), ElementsAre("a.pdf"));
    EXPECT_THAT(named("Content-Disposition: attachment"), ElementsAre());
}

TEST(MessageBody, DecodesTransferEncodings)
{
    EXPECT_EQ(Read("Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: base64\n\nY2Fmw6k").text,
              "café\n");
    EXPECT_EQ(Read("Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: quoted-printable\n\n"
                   "caf=E9 =\nnoir=\n")
                  .text,
              "café noir\n");
    EXPECT_EQ(Read("Content-Type: text/html\n\n<meta charset=koi8-r><p>\xF0\xF2\xE9</p>").text, "ПРИ\n");
}

TEST(MessageBody, JoinsFlowedText)
{
    EXPECT_EQ(Read("Content-Type: text/plain; format=Flowed\n\none \ntwo\n").text, "one two\n");
    EXPECT_EQ(Read("Content-Type: text/plain; format=flowed; DelSp=Yes\n\non \ne\n").text, "one\n");
}

TEST(MessageBody, TakesBrokenStructures)
{
    EXPECT_EQ(Read("Content-Type: multipart/mixed\n\nno boundary was named\n").text, "no boundary was named\n");
    EXPECT_EQ(Read("Content-Type: multipart/mixed; boundary=x\n\nit never comes\n").text, "it never comes\n");
    EXPECT_EQ(Read("Content-Type: multipart/mixed; boundary=b\n\n--b\n" + kPlain).text, "plain\n");
    EXPECT_EQ(Read("Content-Type: nonsense\n\ntext\n").text, "text\n");
}

TEST(MessageBody, EndsItsWayDownSomewhere)
{
    std::string nested = kPlain;
    for (int level = 0; level < 200; ++level)
        nested = Multipart("mixed", {nested}, "b" + std::to_string(level));
    EXPECT_EQ(Read(nested).text, "");
}

TEST(MessageBody, ReadsNoMoreTextThanItSays)
{
    const std::string line = std::string(999, 'x') + "\n";
    std::string huge;
    for (int i = 0; i < 20000; ++i)
        huge += line;
    const MessageText text = Read("Content-Type: text/plain\n\n" + huge);
    EXPECT_LE(text.text.size(), kMostTextBytes + 1);
    EXPECT_GT(text.text.size(), kMostTextBytes - 1000);
    const MessageText lines = Read("Content-Type: text/plain\n\n" + std::string(kMostLines + 1000, '\n') + "end\n");
    EXPECT_EQ(lines.text, "");
}

}  // namespace
}  // namespace pavex

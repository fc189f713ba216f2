// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QVector>

/// What somebody sends who means no good, or does not know better.
struct hostileRequest {
    const char *name;
    QByteArray bytes;
    int status; ///< of the one answer, after which the connection is closed
};

inline QByteArray endpointLine()
{
    return "POST /php/Fennick/mcp.php HTTP/1.1\r\n";
}

/// A request for the version with these fields in its head.
inline QByteArray askedWith(const QByteArray &fields,
                            const QByteArray &body = "app=Fennick&type=getReferenceVersion")
{
    return endpointLine() + "Host: x\r\n" + fields + "\r\n" + body;
}

/// A whole request inside another.
inline QByteArray smuggled()
{
    return askedWith("Content-Length: 36\r\n");
}

/// A form of parts with a part header of so many blanks, said to be packed.
inline QByteArray packedParts(int blanks)
{
    const QByteArray body = "--b\r\nContent-Disposition:" + QByteArray(blanks, ' ')
                            + "form-data; name=\"app\"\r\n\r\nFennick\r\n--b--\r\n";
    return askedWith("Content-Type: multipart/form-data; boundary=b\r\nContent-Encoding: gzip\r\n"
                     "Content-Length: "
                         + QByteArray::number(body.size()) + "\r\n",
                     body);
}

/// What is wrong about where the request ends.
inline QVector<hostileRequest> wrongFraming()
{
    const QByteArray length = "Content-Length: 36\r\n";
    return {
        {"no length", askedWith(""), 411},
        {"two lengths", askedWith(length + length), 400},
        {"two different lengths", askedWith(length + "Content-Length: 3\r\n"), 400},
        {"list of lengths", askedWith("Content-Length: 36, 36\r\n"), 400},
        {"negative length", askedWith("Content-Length: -36\r\n"), 400},
        {"length with a sign", askedWith("Content-Length: +36\r\n"), 400},
        {"length in hex", askedWith("Content-Length: 0x24\r\n"), 400},
        {"length with a letter", askedWith("Content-Length: 36a\r\n"), 400},
        {"empty length", askedWith("Content-Length:\r\n"), 400},
        {"length with a blank", askedWith("Content-Length: 3 6\r\n"), 400},
        {"length as a fraction", askedWith("Content-Length: 36.0\r\n"), 400},
        {"blank before the colon", askedWith("Content-Length : 36\r\n"), 400},
        {"too long by one", askedWith("Content-Length: 65537\r\n", ""), 413},
        {"terabytes", askedWith("Content-Length: 999999999999\r\n", ""), 413},
        {"more than a number holds", askedWith("Content-Length: 99999999999999999999999\r\n", ""),
         400},
        {"chunked", askedWith("Transfer-Encoding: chunked\r\n", "0\r\n\r\n"), 411},
        {"Chunked", askedWith("Transfer-Encoding: Chunked\r\n", "0\r\n\r\n"), 411},
        {"chunked and a length", askedWith("Transfer-Encoding: chunked\r\n" + length, "0\r\n\r\n"),
         400},
        {"a length and chunked", askedWith(length + "Transfer-Encoding: chunked\r\n", "0\r\n\r\n"),
         400},
        {"gzip transfer", askedWith("Transfer-Encoding: gzip\r\n"), 501},
        {"gzip, chunked transfer", askedWith("Transfer-Encoding: gzip, chunked\r\n"), 501},
        {"identity transfer", askedWith("Transfer-Encoding: identity\r\n"), 501},
        {"chunked twice",
         askedWith("Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n", "0\r\n\r\n"),
         400},
        {"page with a body",
         "GET /health HTTP/1.1\r\nHost: x\r\nContent-Length: "
             + QByteArray::number(smuggled().size()) + "\r\n\r\n" + smuggled(),
         400},
        {"page with a chunked body",
         "GET /health HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"
             + smuggled(),
         411},
        {"HEAD with a body", "HEAD /health HTTP/1.1\r\nHost: x\r\nContent-Length: 5\r\n\r\nhello",
         400},
        {"bare line feeds", "GET /health HTTP/1.1\nHost: x\n\n", 400},
        {"carriage return in a field", askedWith("X: a\rb\r\n" + length), 400},
    };
}

/// What is wrong about the first line.
inline QVector<hostileRequest> wrongFirstLines()
{
    const QByteArray host = "Host: x\r\n\r\n";
    return {
        {"word", "HELLO\r\n\r\n", 400},
        {"empty lines", "\r\n\r\n\r\n", 400},
        {"blanks", "   \r\n\r\n", 400},
        {"no target", "GET HTTP/1.1\r\n" + host, 400},
        {"two blanks", "GET  /health HTTP/1.1\r\n" + host, 400},
        {"tab", "GET\t/health HTTP/1.1\r\n" + host, 400},
        {"no version", "GET /health\r\n" + host, 400},
        {"version of another protocol", "GET /health RTSP/1.0\r\n" + host, 400},
        {"HTTP/2", "GET /health HTTP/2.0\r\n" + host, 505},
        {"HTTP/2 greeting", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", 505},
        {"HTTP/0.9", "GET /health HTTP/0.9\r\n" + host, 505},
        {"HTTP/1.10", "GET /health HTTP/1.10\r\n" + host, 400},
        {"small letters", "GET /health http/1.1\r\n" + host, 400},
        {"unknown method", "BREW /health HTTP/1.1\r\n" + host, 501},
        {"method in small letters", "get /health HTTP/1.1\r\n" + host, 501},
        {"method of nonsense", "G@T /health HTTP/1.1\r\n" + host, 400},
        {"form as a page", "GET /php/Fennick/mcp.php HTTP/1.1\r\n" + host, 405},
        {"page as a form", "POST /health HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n", 405},
        {"DELETE", "DELETE /health HTTP/1.1\r\n" + host, 405},
        {"TRACE", "TRACE /health HTTP/1.1\r\n" + host, 405},
        {"CONNECT", "CONNECT example.org:443 HTTP/1.1\r\n" + host, 404},
        {"OPTIONS *", "OPTIONS * HTTP/1.1\r\n" + host, 404},
        {"other path", "GET /other HTTP/1.1\r\n" + host, 404},
        {"path that goes up", "GET /../health HTTP/1.1\r\n" + host, 404},
        {"path with a quoted letter", "GET /%68ealth HTTP/1.1\r\n" + host, 404},
        {"path with a slash more", "GET //health HTTP/1.1\r\n" + host, 404},
        {"target of 3 kB", "GET /" + QByteArray(3'000, 'x') + " HTTP/1.1\r\n" + host, 414},
        {"target of 100 kB", "GET /" + QByteArray(100'000, 'x') + " HTTP/1.1\r\n" + host, 414},
        {"NUL in the target", QByteArray("GET /he\0lth HTTP/1.1\r\n", 23) + host, 400},
        {"NUL as the first byte", QByteArray("\0GET /health HTTP/1.1\r\n", 23) + host, 400},
        {"NULs only", QByteArray(200, '\0'), 400},
        {"bytes above 127", "GET /\xC3\x9C\xFF HTTP/1.1\r\n" + host, 404},
        {"TLS",
         QByteArray::fromHex("16030100f8010000f40303") + QByteArray(200, '\x5A') + "\r\n\r\n", 400},
    };
}

/// What is wrong about the other lines.
inline QVector<hostileRequest> wrongFields()
{
    const QByteArray length = "Content-Length: 36\r\n";
    QByteArray manyFields;
    for (int i = 0; i < 3'000; ++i)
        manyFields += "X: y\r\n";
    return {
        {"no host", endpointLine() + length + "\r\napp=Fennick&type=getReferenceVersion", 400},
        {"two hosts", askedWith("Host: y\r\n" + length), 400},
        {"line without a colon", askedWith("nonsense\r\n" + length), 400},
        {"field without a name", askedWith(": x\r\n" + length), 400},
        {"blank in a name", askedWith("X Y: z\r\n" + length), 400},
        {"NUL in a field", askedWith(QByteArray("X: a\0b\r\n", 8) + length), 400},
        {"field of 20 kB", askedWith("X: " + QByteArray(20'000, 'x') + "\r\n" + length), 431},
        {"3000 fields", askedWith(manyFields + length), 431},
        {"packed parts", packedParts(15'000), 415},
        {"few packed parts", packedParts(1), 415},
        {"parts", askedWith("Content-Type: multipart/form-data; boundary=b\r\n" + length), 415},
        {"JSON", askedWith("Content-Type: application/json\r\n" + length), 415},
        {"two content types",
         askedWith("Content-Type: application/x-www-form-urlencoded\r\n"
                   "Content-Type: application/x-www-form-urlencoded\r\n"
                   + length),
         415},
        {"gzip", askedWith("Content-Encoding: gzip\r\n" + length), 415},
        {"br", askedWith("Content-Encoding: br\r\n" + length), 415},
        {"deflate many times",
         askedWith("Content-Encoding: deflate" + QByteArray(", deflate").repeated(500) + "\r\n"
                   + length),
         415},
        {"identity", askedWith("Content-Encoding: identity\r\n" + length), 415},
        {"packed page", "GET /health HTTP/1.1\r\nHost: x\r\nContent-Encoding: gzip\r\n\r\n", 415},
        {"other expectation", askedWith("Expect: a miracle\r\n" + length), 417},
        {"two expectations", askedWith("Expect: 100-continue\r\nExpect: 100-continue\r\n" + length),
         417},
        {"expects to send too much",
         askedWith("Expect: 100-continue\r\nContent-Length: 65537\r\n", ""), 413},
        {"expects to send elsewhere",
         "POST /other HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: 5\r\n\r\n",
         404},
    };
}

inline QVector<hostileRequest> hostileRequests()
{
    return wrongFraming() + wrongFirstLines() + wrongFields();
}

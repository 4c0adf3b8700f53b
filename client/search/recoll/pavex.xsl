<?xml version="1.0" encoding="UTF-8"?>
<!-- A metafile as a page for Recoll: the content is its body, each other property a field named by its key.
     Keys themselves and the file's own version are never text. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="html" encoding="UTF-8"/>

<xsl:variable name="properties" select="/plist/dict/key[. != 'com_quorvex_morvane_pavex_metafile_version']"/>
<!-- What most texts are written in, the most frequent first: each is looked for from the beginning. -->
<xsl:variable name="ascii-list"> etaoinsrhldcumfpgwybvkxjqz.,&#10;&#13;&#9;0123456789-'"():/@=&lt;>_;!?&amp;+*#%~$[]{}|\^`ETAOINSRHLDCUMFPGWYBVKXJQZ</xsl:variable>
<xsl:variable name="ascii" select="string($ascii-list)"/>
<xsl:variable name="alphabets" select="'@ALPHABETS@'"/>
<!-- Of those a note has, the first of this order is its date. -->
<xsl:variable name="date">
  <xsl:call-template name="first"><xsl:with-param name="keys"
    select="'received message_time due_date start_date start_time last_modified_time '"/></xsl:call-template>
</xsl:variable>

<xsl:template match="/">
  <html>
    <head>
      <title><xsl:call-template name="joined"><xsl:with-param name="keys"
        select="$properties[. = 'title' or . = 'subject']"/></xsl:call-template></title>
      <xsl:call-template name="field">
        <xsl:with-param name="name" select="'author'"/>
        <xsl:with-param name="keys" select="$properties[. = 'from' or . = 'discussion_authors' or . = 'organizer'
          or . = 'owner' or . = 'com_quorvex_morvane_pavex_display_name']"/>
      </xsl:call-template>
      <xsl:call-template name="field">
        <xsl:with-param name="name" select="'recipient'"/>
        <xsl:with-param name="keys" select="$properties[. = 'to' or . = 'attendees']"/>
      </xsl:call-template>
      <xsl:call-template name="field">
        <xsl:with-param name="name" select="'recipient'"/>
        <xsl:with-param name="keys" select="$properties[. = 'cc' or . = 'bcc']"/>
      </xsl:call-template>
      <xsl:call-template name="field">
        <xsl:with-param name="name" select="'keywords'"/>
        <xsl:with-param name="keys" select="$properties[. = 'categories']"/>
      </xsl:call-template>
      <xsl:call-template name="field">
        <xsl:with-param name="name" select="'phone'"/>
        <xsl:with-param name="keys" select="$properties[contains(., '_phone') or contains(., '_pager')]"/>
      </xsl:call-template>
      <xsl:call-template name="field">
        <xsl:with-param name="name" select="'fax'"/>
        <xsl:with-param name="keys" select="$properties[contains(., '_fax')]"/>
      </xsl:call-template>
      <xsl:call-template name="field">
        <xsl:with-param name="name" select="'address'"/>
        <xsl:with-param name="keys" select="$properties[contains(., 's_address') or contains(., 'home_address')]"/>
      </xsl:call-template>
      <xsl:if test="$date != ''">
        <meta name="date" content="{translate($date, 'TZ', ' ')}"/>
        <meta name="pavexdate" content="{translate($date, '-T:Z', '')}"/>
      </xsl:if>
      <xsl:apply-templates select="$properties[not(. = 'title' or . = 'subject' or . = 'from' or . = 'to'
        or . = 'discussion_authors' or . = 'categories' or . = 'com.quorvex.pavex.content')]" mode="named"/>
    </head>
    <body>
      <xsl:apply-templates select="$properties[. = 'com.quorvex.pavex.content']" mode="body"/>
    </body>
  </html>
</xsl:template>

<!-- The value of the first of some keys, each with a blank behind it, that there is. -->
<xsl:template name="first">
  <xsl:param name="keys"/>
  <xsl:variable name="key" select="substring-before($keys, ' ')"/>
  <xsl:variable name="value" select="$properties[. = $key]/following-sibling::*[1][self::date]"/>
  <xsl:choose>
    <xsl:when test="$value"><xsl:value-of select="$value"/></xsl:when>
    <xsl:when test="$keys != ''">
      <xsl:call-template name="first"><xsl:with-param name="keys" select="substring-after($keys, ' ')"/></xsl:call-template>
    </xsl:when>
  </xsl:choose>
</xsl:template>

<xsl:template name="joined">
  <xsl:param name="keys"/>
  <xsl:for-each select="$keys/following-sibling::*[1][. != '']">
    <xsl:if test="position() > 1">, </xsl:if>
    <xsl:apply-templates select="." mode="value"/>
  </xsl:for-each>
</xsl:template>

<xsl:template name="field">
  <xsl:param name="name"/>
  <xsl:param name="keys"/>
  <xsl:variable name="text">
    <xsl:call-template name="joined"><xsl:with-param name="keys" select="$keys"/></xsl:call-template>
  </xsl:variable>
  <xsl:if test="$text != ''"><meta name="{$name}" content="{$text}"/></xsl:if>
</xsl:template>

<xsl:template match="key" mode="named">
  <xsl:variable name="key">
    <xsl:choose>
      <xsl:when test="starts-with(., 'com_quorvex_morvane_pavex_')">
        <xsl:value-of select="substring-after(., 'com_quorvex_morvane_pavex_')"/>
      </xsl:when>
      <xsl:when test="starts-with(., 'com.quorvex.pavex.')">
        <xsl:value-of select="substring-after(., 'com.quorvex.pavex.')"/>
      </xsl:when>
      <xsl:otherwise><xsl:value-of select="."/></xsl:otherwise>
    </xsl:choose>
  </xsl:variable>
  <xsl:call-template name="field">
    <xsl:with-param name="name" select="translate($key, '_.0123456789', '')"/>
    <xsl:with-param name="keys" select="."/>
  </xsl:call-template>
</xsl:template>

<!-- The token that ends a rendered note's text is nobody's word. -->
<xsl:template match="key" mode="body">
  <xsl:variable name="text">
    <xsl:apply-templates select="following-sibling::*[1]" mode="value"/>
  </xsl:variable>
  <p>
    <xsl:choose>
      <xsl:when test="contains($text, '@MARKER@')"><xsl:value-of select="substring-before($text, '@MARKER@')"/></xsl:when>
      <xsl:otherwise><xsl:value-of select="$text"/></xsl:otherwise>
    </xsl:choose>
  </p>
</xsl:template>

<xsl:template match="integer | real" mode="value"><xsl:value-of select="."/></xsl:template>
<!-- The engine takes digits that follow Chinese, Japanese or Korean signs for a part of them: a blank before the first
     digit leaves the number a number. Texts in other scripts are left as they are, but for signs that the engine would
     part a word at, and whose likes it does not. -->
<xsl:variable name="parting" select="'‘❛‑'"/>
<xsl:variable name="joining" select="'’’‐'"/>
<xsl:template match="string" mode="value">
  <xsl:variable name="others" select="translate(., $ascii, '')"/>
  <xsl:choose>
    <xsl:when test="$others = ''"><xsl:value-of select="."/></xsl:when>
    <xsl:when test="translate($others, $alphabets, '') = ''">
      <xsl:value-of select="translate(., $parting, $joining)"/>
    </xsl:when>
    <xsl:otherwise>
      <xsl:call-template name="parted">
        <xsl:with-param name="text" select="translate(., $parting, $joining)"/>
      </xsl:call-template>
    </xsl:otherwise>
  </xsl:choose>
</xsl:template>
<!-- By halves, down to short pieces: each number is a step deeper, and each step takes what is left of its piece.
     before: the sign before the text. -->
<xsl:template name="parted">
  <xsl:param name="text"/>
  <xsl:param name="before"/>
  <xsl:variable name="length" select="string-length($text)"/>
  <xsl:choose>
    <xsl:when test="$length > 64">
      <xsl:variable name="half" select="floor($length div 2)"/>
      <xsl:call-template name="parted">
        <xsl:with-param name="text" select="substring($text, 1, $half)"/>
        <xsl:with-param name="before" select="$before"/>
      </xsl:call-template>
      <xsl:call-template name="parted">
        <xsl:with-param name="text" select="substring($text, $half + 1)"/>
        <xsl:with-param name="before" select="substring($text, $half, 1)"/>
      </xsl:call-template>
    </xsl:when>
    <xsl:otherwise>
      <xsl:call-template name="numbers">
        <xsl:with-param name="text" select="$text"/>
        <xsl:with-param name="before" select="$before"/>
      </xsl:call-template>
    </xsl:otherwise>
  </xsl:choose>
</xsl:template>
<xsl:template name="numbers">
  <xsl:param name="text"/>
  <xsl:param name="before"/>
  <xsl:variable name="zeros" select="translate($text, '123456789', '000000000')"/>
  <xsl:choose>
    <xsl:when test="not(contains($zeros, '0'))"><xsl:value-of select="$text"/></xsl:when>
    <xsl:otherwise>
      <xsl:variable name="lead" select="substring-before($zeros, '0')"/>
      <xsl:variable name="done" select="concat($before, $lead)"/>
      <xsl:variable name="last" select="substring($done, string-length($done))"/>
      <xsl:variable name="rest" select="substring($text, string-length($lead) + 1)"/>
      <xsl:variable name="next" select="substring(translate($rest, '0123456789', ''), 1, 1)"/>
      <xsl:value-of select="$lead"/>
      <xsl:if test="not(contains($ascii, $last) or contains($alphabets, $last))"><xsl:text> </xsl:text></xsl:if>
      <xsl:choose>
        <xsl:when test="$next = ''"><xsl:value-of select="$rest"/></xsl:when>
        <xsl:otherwise>
          <xsl:value-of select="substring-before($rest, $next)"/>
          <xsl:call-template name="numbers">
            <xsl:with-param name="text" select="concat($next, substring-after($rest, $next))"/>
          </xsl:call-template>
        </xsl:otherwise>
      </xsl:choose>
    </xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template match="date" mode="value"><xsl:value-of select="translate(., 'TZ', ' ')"/></xsl:template>
<xsl:template match="array | dict" mode="value">
  <xsl:for-each select=".//string | .//integer | .//real | .//date">
    <xsl:if test="position() > 1">, </xsl:if>
    <xsl:apply-templates select="." mode="value"/>
  </xsl:for-each>
</xsl:template>
<xsl:template match="true | false | data" mode="value"/>

</xsl:stylesheet>

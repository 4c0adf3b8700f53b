<?xml version="1.0" encoding="UTF-8"?>
<!-- A metafile as a page for Recoll: the content is its body, each other property a field named by its key.
     Keys themselves and the file's own version are never text. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="html" encoding="UTF-8"/>

<xsl:variable name="properties" select="/plist/dict/key[. != 'com_quorvex_morvane_pavex_metafile_version']"/>
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

<xsl:template match="string | integer | real" mode="value"><xsl:value-of select="."/></xsl:template>
<xsl:template match="date" mode="value"><xsl:value-of select="translate(., 'TZ', ' ')"/></xsl:template>
<xsl:template match="array | dict" mode="value">
  <xsl:for-each select=".//string | .//integer | .//real | .//date">
    <xsl:if test="position() > 1">, </xsl:if>
    <xsl:apply-templates select="." mode="value"/>
  </xsl:for-each>
</xsl:template>
<xsl:template match="true | false | data" mode="value"/>

</xsl:stylesheet>

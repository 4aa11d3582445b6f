# Takes C++ files apart, as far as the checks of lint.sh need it, and prints one fact a line:
#
#   include FILE LINE NAME         an #include; NAME with its quotes or angle brackets
#   type FILE NAME                 a class or struct of a header
#   declares FILE NAME             a function or extern variable that a header promises
#   defines FILE NAME              one that others can link with; members with the name of their class
#   puzzle FILE                    braces that do not pair: nothing said about the file is worth much
#   function FILE LINE LENGTH NAME the body's lines, from the first of the head to the closing brace
#
# It leans on the layout that clang-format gives: no parser, but every brace, bracket and semicolon
# outside of strings and comments counts.

function Trim(text)
{
    gsub(/[ \t]+/, " ", text)
    sub(/^ /, "", text)
    sub(/ $/, "", text)
    return text
}

# A line without comments; strings and characters become empty ones.
function Clean(line,    out, end, part)
{
    out = ""
    while (line != "")
    {
        if (inComment)
        {
            end = index(line, "*/")
            if (!end)
                return out
            inComment = 0
            line = substr(line, end + 2)
            continue
        }
        if (rawEnd != "")
        {
            end = index(line, rawEnd)
            if (!end)
                return out
            line = substr(line, end + length(rawEnd))
            rawEnd = ""
            continue
        }
        if (!match(line, /R"[^(" ]*\(|"([^"\\]|\\.)*"|'([^'\\]|\\.)+'|\/\/|\/\*/))
            return out line
        out = out substr(line, 1, RSTART - 1)
        part = substr(line, RSTART, RLENGTH)
        line = substr(line, RSTART + RLENGTH)
        if (part == "//")
            return out
        if (part == "/*")
            inComment = 1
        else if (part ~ /^R"/)
            rawEnd = ")" substr(part, 3, length(part) - 3) "\""
        else
            out = out "\"\""
    }
    return out
}

# Without what stands before a declaration proper: template heads, attributes, macros of alignment.
function Bare(text,    depth, i, c)
{
    text = Trim(text)
    while (text ~ /^template ?</)
    {
        depth = 0
        for (i = index(text, "<"); i <= length(text); ++i)
        {
            c = substr(text, i, 1)
            depth += (c == "<") - (c == ">")
            if (depth == 0)
                break
        }
        text = Trim(substr(text, i + 1))
    }
    gsub(/\[\[[^]]*\]\] ?/, "", text)
    gsub(/__attribute__ ?\(\([^)]*\)*\)\) ?/, "", text)
    gsub(/alignas\([^)]*\) ?/, "", text)
    sub(/^(public|private|protected): ?/, "", text)
    return text
}

# The name in front of the first parenthesis, with its classes; empty when a value comes first.
function FunctionName(text,    at)
{
    if (match(text, /operator ?[^ (A-Za-z]+\(/) || match(text, /operator ?\(\) ?\(/))
        at = RSTART + RLENGTH - 1
    else
    {
        at = index(text, "(")
        if (!at || (index(text, "=") && index(text, "=") < at))
            return ""
    }
    text = Trim(substr(text, 1, at - 1))
    if (!match(text, /([A-Za-z_][A-Za-z0-9_]*(<[^<> ]*>)?::)*(~?[A-Za-z_][A-Za-z0-9_]*|operator ?[^ ]+)$/))
        return ""
    return substr(text, RSTART)
}

function VariableName(text)
{
    sub(/ ?=.*/, "", text)
    gsub(/ ?\[[^]]*\]/, "", text)
    return match(text, / \**[A-Za-z_][A-Za-z0-9_]*$/) ? substr(text, RSTART + 1) : ""
}

function IsOwn(text)
{
    return text ~ /^(static|constexpr|inline|using|typedef|friend|return|struct|class|enum|union|extern template|const [A-Za-z0-9_:]+ k?[A-Z][A-Za-z0-9]* ?=)/
}

function Defines(text, name)
{
    if (name != "" && !anonymous && !IsOwn(text) && text !~ /^(extern|static_assert)/ && !isHeader)
        print "defines", FILENAME, name
}

# Something has been said up to a semicolon.
function Statement(text,    name)
{
    text = Bare(text)
    if (kind[depth] !~ /^(top|namespace)$/ || text == "" || text ~ /^static_assert/)
        return
    name = FunctionName(text)
    if (isHeader && !IsOwn(text) && (name != "" || text ~ /^extern /))
        print "declares", FILENAME, name != "" ? name : VariableName(text)
    else if (name == "")
        Defines(text, VariableName(text))
}

# What a brace opens.
function Opens(text,    name)
{
    if (kind[depth] !~ /^(top|namespace|anonymous|type)$/)
        return "block"
    if (text ~ /namespace$/)
        return "anonymous"
    if (text ~ /^(inline )?namespace / || text ~ /^extern ""$/)
        return "namespace"
    name = FunctionName(text)
    if (name != "" && text !~ /^[,:]/)
    {
        if (kind[depth] == "top" || kind[depth] == "namespace")
            Defines(text, name)
        functionName = name
        functionLine = chunkLine
        return "function"
    }
    if (text ~ /^(typedef |static |const )*(class|struct|union) / && text !~ /=/)
    {
        sub(/^(typedef |static |const )*(class|struct|union) /, "", text)
        sub(/[ :].*/, "", text)
        if (isHeader && text != "")
            print "type", FILENAME, text
        return "type"
    }
    if (kind[depth] != "type" && text !~ /^enum /)
        Defines(text, VariableName(text))
    return "values"
}

function EndFile()
{
    if (depth != 0 || unpaired || inComment || rawEnd != "")
        print "puzzle", file
}

FNR == 1 {
    EndFile()
    file = FILENAME
    depth = 0
    kind[0] = "top"
    chunk = ""
    inComment = inMacro = anonymous = unpaired = 0
    rawEnd = ""
    isHeader = FILENAME ~ /\.h$/
}

inMacro || /^[ \t]*#/ {
    if (!inMacro && !inComment && match($0, /^[ \t]*#[ \t]*include[ \t]*/))
    {
        name = substr($0, RLENGTH + 1)
        if (match(name, /^("[^"]*"|<[^>]*>)/))
            print "include", FILENAME, FNR, substr(name, 1, RLENGTH)
    }
    inMacro = /\\$/
    next
}

{
    rest = Clean($0)
    while (match(rest, /[{};]/))
    {
        mark = substr(rest, RSTART, 1)
        if (Trim(chunk) == "")
            chunkLine = FNR
        chunk = chunk " " substr(rest, 1, RSTART - 1)
        rest = substr(rest, RSTART + 1)
        # Braces of default arguments and of lambdas that are handed over.
        if (kind[depth] !~ /^(function|block)$/ && gsub(/\(/, "(", chunk) != gsub(/\)/, ")", chunk))
        {
            chunk = chunk " "
            continue
        }
        if (mark == ";")
            Statement(chunk)
        else if (mark == "{")
        {
            opened = Opens(Bare(chunk))
            kind[++depth] = opened
            anonymous += opened == "anonymous"
        }
        else if (depth == 0)
            unpaired = 1
        else
        {
            if (kind[depth] == "function")
                print "function", FILENAME, functionLine, FNR - functionLine + 1, functionName
            anonymous -= kind[depth] == "anonymous"
            --depth
        }
        chunk = ""
    }
    if (Trim(chunk) == "")
        chunkLine = FNR
    chunk = chunk " " rest
}

END { EndFile() }

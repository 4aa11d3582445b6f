# Compares cmake/layers.txt, the first file, with the facts of sources.awk, the second one: who
# includes whom, and whether what a header promises is in the .cpp file of its name.

function Complain(text)
{
    print text > "/dev/stderr"
    failed = 1
}

function Folder(path) { return substr(path, 1, index(path, "/") - 1) }

function Stem(path)
{
    sub(/\.[a-z]+$/, "", path)
    return path
}

# The name that a .cpp file shares with its header. Variants of a system or of an instruction set
# have one header together.
function Topic(path)
{
    path = Stem(path)
    sub(/_(win|posix|plain|sse2|avx2|avx512)$/, "", path)
    return path
}

# Which of the patterns a text fits, or none; `*` stands for anything.
function Fitting(text, patterns,    list, count, i, pattern)
{
    count = split(patterns, list, " ")
    for (i = 1; i <= count; ++i)
    {
        pattern = list[i]
        gsub(/[.+]/, "[&]", pattern)
        gsub(/\*/, ".*", pattern)
        if (text ~ "^" pattern "$")
            return list[i]
    }
    return ""
}

# A row "WORD left: right" of layers.txt.
FNR == NR && /^[a-z]/ {
    if (!match($0, /:( |$)/))
        Complain("layers.txt: what is '" $0 "'?")
    word = $1
    sub(/:$/, "", word)
    right = substr($0, RSTART + 1)
    left = substr($0, length(word) + 2, RSTART - length(word) - 2)
    if (word == "layer")
    {
        layers[left] = " "
        count = split(right, list, " ")
        for (i = 1; i <= count; ++i)
        {
            if (list[i] != "*" && !(list[i] in layers))
                Complain("layers.txt: " left " may not include " list[i] ", which is not below it")
            layers[left] = layers[left] list[i] " "
        }
    }
    else if (word == "windows")
        windows = right
    else if (word == "door")
    {
        headers[++doors] = left
        files[doors] = right
    }
    else if (word == "promise")
        meant[left] = right
    else if (word == "known")
        known[left] = known[left] right " "
    else
        Complain("layers.txt: what is '" $0 "'?")
    next
}
FNR == NR { next }

function Refuse(file, header, text)
{
    if (Fitting(header, known[file]) != "")
        seen[file " " header] = 1
    else
        Complain(text)
}

function IncludesOurs(file, line, name,    from, to, all)
{
    from = Folder(file)
    to = Folder(name)
    all = from in layers && layers[from] == " * "
    if (!(from in layers) || !(to in layers))
        Refuse(file, name, file ":" line ": " name ": no layer")
    else if (from != to && !all && index(layers[from], " " to " ") == 0)
        Refuse(file, name, file ":" line ": " name ": " from " may not include " to)
    else if (!all && Fitting(Stem(name), windows) != "" && Fitting(Stem(file), windows) == "")
        Refuse(file, name, file ":" line ": " name ": sees windows, but its name does not say so")
}

function IncludesOther(file, line, name,    i, pattern)
{
    for (i = 1; i <= doors && Fitting(name, headers[i]) == ""; ++i)
        ;
    pattern = i > doors ? "" : Fitting(Stem(file), files[i])
    entered[i " " pattern] = 1
    if (pattern == "")
        Refuse(file, name, file ":" line ": " name ": " \
            (i > doors ? "has no door" : "comes in through" files[i] " only"))
}

$1 == "puzzle" { Complain($2 ": braces do not pair") }

$1 == "include" {
    name = $4
    gsub(/[<>]/, "", name)
    if (name ~ /^".*\//)
    {
        gsub(/"/, "", name)
        IncludesOurs($2, $3, name)
    }
    else if (name ~ /[.\/]/)
        IncludesOther($2, $3, name)
}

$1 == "type" { promised[$3] = promised[$3] $2 " " }
$1 == "declares" { promised[$3] = promised[$3] $2 " " }

# Tests replace functions by their own.
$1 == "defines" && Folder($2) != "tests" { definitions[$2 " " $3] = 1 }

# Whether the function is where one of the headers that promise it says.
function IsAtHome(file, headers,    list, count, i)
{
    count = split(headers, list, " ")
    for (i = 1; i <= count; ++i)
        if (Topic(list[i]) == Topic(file) || Fitting(file, meant[list[i]]) != "")
            return 1
    return count == 0
}

function FindStray(file, member,    name, list)
{
    name = member
    sub(/(<.*)?::.*/, "", name) # a member is promised with its type
    if (IsAtHome(file, promised[name]))
        return
    split(promised[name], list, " ")
    stray[file " " list[1]] = stray[file " " list[1]] " " member
}

END {
    for (definition in definitions)
    {
        split(definition, list, " ")
        FindStray(list[1], list[2])
    }
    for (pair in stray)
    {
        split(pair, list, " ")
        Refuse(list[1], list[2], list[1] ": has what " list[2] " promises:" stray[pair])
    }
    for (file in known)
    {
        count = split(known[file], list, " ")
        for (i = 1; i <= count; ++i)
            if (!((file " " list[i]) in seen))
                Complain("layers.txt: known, but gone: " file ": " list[i])
    }
    for (i = 1; i <= doors; ++i)
    {
        count = split(files[i], list, " ")
        for (j = 1; j <= count; ++j)
            if (!((i " " list[j]) in entered))
                Complain("layers.txt: " list[j] " includes none of " headers[i])
    }
    exit failed
}

# What Doxygen reads in place of a page of several sections: it begins with their list.

{ print }

/^# / && FNR == 1 && FILENAME ~ /\/docs\// {
    print ""
    print "[TOC]"
}
